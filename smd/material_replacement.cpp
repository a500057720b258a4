#include "smd/material_replacement.h"

#include "core/input_file.h"
#include "core/output_file.h"
#include "core/text_writer.h"
#include "smd/text_replacer.h"

namespace tarnwick::smd {

namespace {

constexpr std::string_view ErrorCaption = "SMD ERROR";

std::nullopt_t Fail(core::Report& report, core::TroubleKind kind, const std::string& path, const std::string& reason) {
  report.Tell({.Kind = kind,
               .File = path,
               .Text = (kind == core::TroubleKind::Unreadable ? "Unable to read" : "Unable to write") + path,
               .Caption = std::string(ErrorCaption),
               .Details = reason});
  return std::nullopt;
}

}  // namespace

bool CheckReplacement(const MaterialReplacement& replacement, core::Report& report) {
  const auto missing = [&](std::string_view text) {
    report.WarningBox(core::TroubleKind::Refused, text, ErrorCaption);
    return false;
  };
  if (replacement.Path.empty()) return missing("No Reference SMD File Specified");
  if (replacement.OldName.empty()) return missing("No Old Material Specified");
  if (replacement.NewName.empty()) return missing("No New Material Specified");
  return true;
}

std::string ReplacementQuestion(const MaterialReplacement& replacement) {
  return "Replace \"" + replacement.OldName + "\" with \"" + replacement.NewName + "\" in \r\n\"" + replacement.Path +
         "\" ?";
}

std::optional<uint64_t> ReplaceMaterial(const MaterialReplacement& replacement, core::Report& report) {
  const std::string& path = replacement.Path;
  std::string reason;
  std::optional<core::InputFile> input = core::InputFile::Open(path, &reason);
  if (!input) return Fail(report, core::TroubleKind::Unreadable, path, reason);
  if (input->Size() == 0) {
    report.Tell({.Kind = core::TroubleKind::Damaged,
                 .File = path,
                 .Text = "Bad size for SMD file " + path,
                 .Caption = std::string(core::DefaultCaption),
                 .Icon = core::BoxIcon::None});
    return std::nullopt;
  }
  std::optional<core::OutputFile> output = core::OutputFile::Create(path, &reason);
  if (!output) return Fail(report, core::TroubleKind::Unwritable, path, reason);
  core::TextWriter writer(*output);
  TextReplacer replacer(replacement.OldName, replacement.NewName, [&](std::string_view text) { writer.Raw(text); });
  for (std::string_view bytes = input->Read(); !bytes.empty(); bytes = input->Read()) replacer.Feed(bytes);
  if (!input->Error().empty()) return Fail(report, core::TroubleKind::Unreadable, path, input->Error());
  if (replacer.Count() == 0) return 0;
  replacer.Finish();
  writer.Flush();
  input.reset();  // Windows gives an open file's name to no other
  if (!output->Commit()) return Fail(report, core::TroubleKind::Unwritable, path, output->Error());
  return replacer.Count();
}

}  // namespace tarnwick::smd

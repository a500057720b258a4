#include "project/script_copy.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "core/file_image.h"
#include "core/paths.h"

namespace tarnwick::project {

namespace fs = std::filesystem;

namespace {

/// Takes the next line off `rest`; false if it does not begin and end so.
bool TakeLine(std::string_view& rest, std::string_view begin, std::string_view end) {
  const std::string_view line = rest.substr(0, rest.find('\n'));
  if (line.size() < begin.size() + end.size() || !line.starts_with(begin) || !line.ends_with(end)) return false;
  rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  return true;
}

}  // namespace

bool IsOwnScript(std::string text) {
  std::erase(text, '\r');
  std::string_view rest = text;
  if (!TakeLine(rest, "$modelname \"", "\"") || !TakeLine(rest, "$scale ", "")) return false;
  if (rest.starts_with("$staticprop\n") && !TakeLine(rest, "$staticprop", "")) return false;
  if (!TakeLine(rest, "$cdmaterials \"models", "\"") || !TakeLine(rest, "", "")) return false;
  if (!TakeLine(rest, "$body \"Body\" \"", "\"") || !TakeLine(rest, "", "")) return false;
  const bool endedEarly = rest.find("$surfaceprop \"") == std::string_view::npos;
  return endedEarly || rest.ends_with("$popd\n") ||
         (rest.ends_with("}\n") && rest.find("\" {\n\t$concave\n\t$mass ") != std::string_view::npos);
}

bool KeepForeignScript(const std::string& path, core::Report& report) {
  if (!core::FileExists(path)) return true;
  std::string reason = "it cannot be read";
  if (const auto file = core::FileImage::Read(path, &reason)) {
    const auto bytes = file->Bytes();
    if (IsOwnScript({reinterpret_cast<const char*>(bytes.data()), bytes.size()})) return true;
    std::error_code error;
    std::string copy = path + ".bak";
    for (int number = 2; number < 1000 && fs::exists(core::NativePath(copy), error); ++number) {
      copy = path + ".bak" + std::to_string(number);
    }
    if (fs::copy_file(core::NativePath(path), core::NativePath(copy), error)) {
      report.Tell({.Level = core::Severity::Note,
                   .Kind = core::TroubleKind::Lost,
                   .File = path,
                   .Text = "The script \"" + path + "\" was not made from a project. It was kept as \"" + copy + "\"",
                   .Caption = "QC File"});
      return true;
    }
    reason = error.message();
  }
  report.ErrorBox(core::TroubleKind::Unwritable,
                  "The script \"" + path + "\" was not made from a project, and no copy of it can be kept: " + reason,
                  "QC Error", path);
  return false;
}

}  // namespace tarnwick::project

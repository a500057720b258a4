#include "cli/archive_verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iomanip>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "archives/archive_name.h"
#include "archives/archive_summary.h"
#include "archives/checksum.h"
#include "archives/extraction.h"
#include "archives/name_pattern.h"
#include "archives/safe_name.h"
#include "cli/interrupt.h"
#include "cli/terminal.h"
#include "core/paths.h"
#include "jobs/input_files.h"

namespace tarnwick::cli {

namespace {

using archives::Archive;
using archives::FileTable;
using Json = nlohmann::ordered_json;

constexpr const char* Examples = R"(Examples:
  tarnwick-cli archive list hl2/hl2_misc_dir.vpk:models/props_c17
  tarnwick-cli archive list addon.gma --match '*.vtf' --match '*.vmt' --json
  tarnwick-cli archive extract pak01_dir.vpk models/props 'materials/**/crate*' -o out
  tarnwick-cli archive info --check pak01_dir.vpk

A pattern: * stands for any characters but a slash, ** for any, ? for one.
Without a slash it is for the last part of a name; a folder means all that lies
below it. Case plays no part. What follows an archive and does not end in .vpk
or .gma is a pattern too, for all archives.)";

struct Options {
  std::vector<std::string> Inputs;
  std::vector<std::string> Patterns;
  std::string Output = ".";
  bool Json = false;
  bool Quiet = false;
  bool Check = false;
};

std::string Dump(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// Prints troubles as they come, and keeps their texts.
class PrintedTroubles : public core::TroubleSink {
 public:
  PrintedTroubles(std::ostream& out, ProgressLine* progress = nullptr) : m_out(out), m_progress(progress) {}
  void Tell(const core::Trouble& trouble) override { Error(trouble.Text); }
  void Error(const std::string& text) {
    if (m_progress != nullptr) m_progress->Clear();
    m_out << "Error: " << text << std::endl;
    Texts.push_back(text);
  }
  std::vector<std::string> Texts;

 private:
  std::ostream& m_out;
  ProgressLine* m_progress;
};

/// Takes the patterns out of what the command line names behind an archive.
void TakePatterns(Options& options) {
  const auto isPattern = [](const std::string& input) {
    return archives::ReadContentName(input).Where == archives::ContentName::Place::Disk &&
           !archives::HasArchiveExtension(input);
  };
  auto& inputs = options.Inputs;
  if (inputs.empty()) return;
  const auto patterns = std::stable_partition(inputs.begin() + 1, inputs.end(),
                                              [&](const std::string& input) { return !isPattern(input); });
  std::move(patterns, inputs.end(), std::back_inserter(options.Patterns));
  inputs.erase(patterns, inputs.end());
}

/// An archive that the command line names, and the files in it that are meant.
struct Chosen {
  std::shared_ptr<const Archive> Opened;  // null if it cannot be opened
  std::string Path;
  std::vector<uint32_t> Files;
};

Chosen Choose(const std::string& input, const Options& options, PrintedTroubles& troubles) {
  const archives::ContentName name = archives::ReadContentName(input);
  Chosen chosen;
  chosen.Path = archives::DirectoryFileOf(name.Path);
  if (name.Where == archives::ContentName::Place::Game) {
    troubles.Error(input + ": name one archive; those of the game lie in its folders as .vpk files");
    return chosen;
  }
  std::string reason;
  chosen.Opened = Archive::Open(chosen.Path, reason);
  if (chosen.Opened == nullptr) {
    troubles.Error(chosen.Path + ": " + archives::PrintableName(reason));
    return chosen;
  }
  chosen.Files = archives::ChooseFiles(*chosen.Opened, options.Patterns);
  if (!name.Inside.empty()) {
    const FileTable& files = chosen.Opened->Files();
    std::erase_if(chosen.Files,
                  [&](uint32_t file) { return !archives::MatchesPattern(files.Name(file), name.Inside); });
  }
  if (chosen.Files.empty() && (!name.Inside.empty() || !options.Patterns.empty())) {
    std::string patterns;
    for (const std::string& pattern : options.Patterns) patterns += (patterns.empty() ? " by " : ", ") + pattern;
    troubles.Error(input + ": no file of the archive is meant" + archives::PrintableName(patterns));
  }
  return chosen;
}

int ExitCode(const PrintedTroubles& troubles) {
  return troubles.Texts.empty() ? ExitSuccess : ExitFailure;
}

Json FileJson(const Archive& archive, uint32_t file) {
  const archives::FilePlace& place = archive.Files().Place(file);
  return {{"archive", archive.Path()},
          {"name", archive.Files().Name(file)},
          {"bytes", place.WholeSize()},
          {"crc32", archives::CrcText(place.Crc)}};
}

int List(const Options& options, Invocation& invocation) {
  PrintedTroubles troubles(invocation.Err);
  for (const std::string& input : options.Inputs) {
    const Chosen chosen = Choose(input, options, troubles);
    if (chosen.Opened == nullptr) continue;
    const FileTable& files = chosen.Opened->Files();
    if (!options.Json && options.Inputs.size() > 1) invocation.Out << chosen.Path << ":\n";
    for (const uint32_t file : chosen.Files) {
      if (options.Json) {
        invocation.Out << Dump(FileJson(*chosen.Opened, file)) << '\n';
      } else {
        invocation.Out << std::setw(12) << files.Place(file).WholeSize() << "  "
                       << archives::CrcText(files.Place(file).Crc) << "  " << archives::PrintableName(files.Name(file))
                       << '\n';
      }
    }
  }
  return ExitCode(troubles);
}

/// Whether the user has stopped the program before it came to `input`, which is told.
bool IsStoppedBefore(const std::string& input, const InterruptFlag& interrupt, PrintedTroubles& troubles) {
  if (interrupt.IsSet()) troubles.Error(input + ": not begun");
  return interrupt.IsSet();
}

/// Takes the chosen files of one archive out, into `output`.
void ExtractOne(const Chosen& chosen, const std::string& output, const Options& options, Invocation& invocation,
                const InterruptFlag& interrupt, PrintedTroubles& troubles, ProgressLine& progress) {
  const size_t before = troubles.Texts.size();
  const auto show = [&](const std::string& name, size_t done) {
    progress.Show(done, chosen.Files.size(), archives::PrintableName(name));
  };
  const archives::Extraction done =
      archives::ExtractFiles(*chosen.Opened, chosen.Files, output, troubles, interrupt.Token(), show);
  progress.Clear();
  if (done.Stopped) troubles.Error(chosen.Path + ": stopped");
  uint64_t bytes = 0;
  for (const auto& file : done.Files) bytes += file.Size;
  if (options.Json) {
    invocation.Out << Dump({{"archive", chosen.Path},
                            {"output", output},
                            {"files", done.Files.size()},
                            {"bytes", bytes},
                            {"failed", done.Failed},
                            {"stopped", done.Stopped},
                            {"errors", std::vector<std::string>(troubles.Texts.begin() + static_cast<ptrdiff_t>(before),
                                                                troubles.Texts.end())}})
                   << '\n';
  } else if (!options.Quiet) {
    invocation.Out << chosen.Path << ": " << done.Files.size() << (done.Files.size() == 1 ? " file, " : " files, ")
                   << bytes << " bytes" << (done.Failed > 0 ? ", " + std::to_string(done.Failed) + " failed" : "")
                   << '\n';
  }
}

int Extract(const Options& options, Invocation& invocation) {
  ProgressLine progress(invocation.Err, ErrorIsTerminal() && !options.Quiet);
  PrintedTroubles troubles(invocation.Err, &progress);
  const InterruptFlag interrupt;
  jobs::UniqueNames names;
  for (const std::string& input : options.Inputs) {
    if (IsStoppedBefore(input, interrupt, troubles)) break;
    const Chosen chosen = Choose(input, options, troubles);
    if (chosen.Opened == nullptr) continue;
    std::string output = options.Output;
    if (options.Inputs.size() > 1) {
      const std::string name = jobs::WithoutExtension(std::string(core::LastComponent(chosen.Path)), ".vpk");
      output += core::PathSeparator + names.Take(jobs::WithoutExtension(name, ".gma"));
    }
    ExtractOne(chosen, output, options, invocation, interrupt, troubles, progress);
  }
  return ExitCode(troubles);
}

/// Reads the chosen files and compares their CRCs.
void Check(const Chosen& chosen, const InterruptFlag& interrupt, PrintedTroubles& troubles, ProgressLine& progress) {
  std::string reason;
  for (size_t i = 0; i < chosen.Files.size() && !interrupt.IsSet(); ++i) {
    const std::string name = archives::PrintableName(chosen.Opened->FullName(chosen.Files[i]));
    progress.Show(i, chosen.Files.size(), name);
    const bool read = chosen.Opened->ReadPieces(
        chosen.Files[i], [&](std::string_view) { return !interrupt.IsSet(); }, reason);
    if (!read && !interrupt.IsSet()) {
      troubles.Error(std::string(name).append(": ").append(reason));
    }
  }
  const bool right = !interrupt.IsSet() && chosen.Opened->CheckWhole(interrupt.Token(), reason);
  if (interrupt.IsSet()) {
    troubles.Error(chosen.Path + ": stopped");
  } else if (!right) {
    troubles.Error(chosen.Path + ": " + reason);
  }
  progress.Clear();
}

std::string KindText(const Archive& archive) {
  const bool vpk = archive.Kind() == archives::ArchiveKind::Vpk;
  return std::string(vpk ? "VPK archive" : "GMA addon") + ", version " + std::to_string(archive.Version()) +
         (archive.IsPacked() ? ", packed" : "");
}

Json InfoJson(const Archive& archive, const archives::ArchiveSummary& summary) {
  Json json{{"archive", archive.Path()},
            {"kind", archive.Kind() == archives::ArchiveKind::Vpk ? "vpk" : "gma"},
            {"version", archive.Version()},
            {"packed", archive.IsPacked()},
            {"files", summary.Files},
            {"bytes", summary.Bytes},
            {"folders", summary.Folders},
            {"sameNames", summary.SameNames},
            {"unsafeNames", summary.UnsafeNames},
            {"extensions", Json::array()}};
  for (const auto& group : summary.Extensions) {
    json["extensions"].push_back({{"extension", group.Name}, {"files", group.Files}, {"bytes", group.Bytes}});
  }
  if (archive.Kind() == archives::ArchiveKind::Gma) {
    json["name"] = archive.Addon().Name;
    json["author"] = archive.Addon().Author;
    json["description"] = archive.Addon().Description;
    return json;
  }
  json["parts"] = Json::array();
  for (const auto& part : summary.Parts) {
    json["parts"].push_back({{"file", part.Name}, {"exists", part.Exists}, {"size", part.Size}, {"files", part.Files}});
  }
  return json;
}

void PrintInfo(const Archive& archive, const archives::ArchiveSummary& summary, std::ostream& out) {
  using archives::PrintableName;
  out << archive.Path() << ": " << KindText(archive) << '\n';
  if (archive.Kind() == archives::ArchiveKind::Gma) {
    out << "Name:\t" << PrintableName(archive.Addon().Name) << "\nAuthor:\t" << PrintableName(archive.Addon().Author)
        << '\n';
  }
  out << "Files:\t" << summary.Files << "\nBytes:\t" << summary.Bytes << "\nFolders:\t" << summary.Folders << '\n';
  if (summary.SameNames > 0) out << "Of the same name:\t" << summary.SameNames << '\n';
  if (summary.UnsafeNames > 0) out << "Of unsafe names:\t" << summary.UnsafeNames << '\n';
  for (const auto& group : summary.Extensions) {
    out << (group.Name.empty() ? "no extension" : PrintableName(group.Name)) << '\t' << group.Files << " files, "
        << group.Bytes << " bytes\n";
  }
  for (const auto& part : summary.Parts) {
    out << part.Name << '\t' << part.Files << " files" << (part.Exists ? "" : ", missing") << '\n';
  }
}

int Info(const Options& options, Invocation& invocation) {
  ProgressLine progress(invocation.Err, ErrorIsTerminal() && !options.Quiet);
  PrintedTroubles troubles(invocation.Err, &progress);
  const InterruptFlag interrupt;
  for (const std::string& input : options.Inputs) {
    if (IsStoppedBefore(input, interrupt, troubles)) break;
    const Chosen chosen = Choose(input, options, troubles);
    if (chosen.Opened == nullptr) continue;
    const archives::ArchiveSummary summary = archives::Summarize(*chosen.Opened);
    const size_t before = troubles.Texts.size();
    if (options.Check) Check(chosen, interrupt, troubles, progress);
    if (options.Json) {
      Json json = InfoJson(*chosen.Opened, summary);
      if (options.Check) json["damaged"] = troubles.Texts.size() - before;
      invocation.Out << Dump(json) << '\n';
    } else {
      PrintInfo(*chosen.Opened, summary, invocation.Out);
      if (options.Check && troubles.Texts.size() == before) invocation.Out << "Every CRC is right\n";
    }
  }
  return ExitCode(troubles);
}

using Work = int (*)(const Options& options, Invocation& invocation);

CLI::App* AddWork(CLI::App& verb, const char* name, const char* text, Work work,
                  const std::shared_ptr<Options>& options, Invocation& invocation) {
  CLI::App* command = verb.add_subcommand(name, text);
  command
      ->add_option("FILE", options->Inputs,
                   "Archives, each with a colon and a pattern behind it if not all is meant; patterns for all of them "
                   "may follow")
      ->required();
  command->add_flag("--json", options->Json, "Print JSON objects, one a line");
  command->callback([work, options, &invocation] {
    invocation.Run = [work, options, &invocation] {
      TakePatterns(*options);
      return work(*options, invocation);
    };
  });
  return command;
}

}  // namespace

void AddArchiveVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("archive", "List, inspect and unpack VPK archives and GMA addons");
  verb->require_subcommand(1);
  verb->footer(Examples);
  auto options = std::make_shared<Options>();
  const auto addPatterns = [&](CLI::App* command) {
    command->add_option("-m,--match", options->Patterns, "Only files that this pattern means; may be repeated")
        ->type_name("PATTERN")
        ->allow_extra_args(false);
  };
  addPatterns(AddWork(*verb, "list", "Size, CRC-32 and name of the files", List, options, invocation));
  CLI::App* extract =
      AddWork(*verb, "extract", "Write files to the disk, their folders kept", Extract, options, invocation);
  addPatterns(extract);
  extract
      ->add_option("-o,--output", options->Output,
                   "Where the files go: those of one archive straight into it, those of several each into a folder "
                   "of the archive's name (default: the current directory; made if missing)")
      ->type_name("DIR");
  extract->add_flag("-q,--quiet", options->Quiet, "Print errors only");
  CLI::App* info = AddWork(*verb, "info", "The figures of an archive and its parts", Info, options, invocation);
  info->add_flag("--check", options->Check, "Read every file and compare its CRC-32");
}

}  // namespace tarnwick::cli

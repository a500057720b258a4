#include "cli/vtf_verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <thread>

#include "cli/console_host.h"
#include "cli/interrupt.h"
#include "cli/tool_directories.h"
#include "cli/vtf_info.h"
#include "core/paths.h"
#include "images/known_formats.h"
#include "jobs/export_textures.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli vtf -o brick.png brick.vtf
  tarnwick-cli vtf -o images --format png -r game/materials
  tarnwick-cli vtf -o images -r hl2_textures_dir.vpk:materials/brick
  tarnwick-cli vtf info brick.vtf)";

constexpr const char* InfoExamples = R"(Example:
  tarnwick-cli vtf info --json materials/models/props/*.vtf >facts.jsonl)";

struct Options {
  std::vector<std::string> Inputs;
  std::string Output = ".";
  std::string Format;
  ToolDirectories Directories;
  bool Recursive = false;
  bool ListFormats = false;
  bool KeepTga = false;
  bool Json = false;
  bool Quiet = false;
  bool Verbose = false;
  int Jobs = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  std::vector<std::string> InfoFiles;
};

/// One line of JSON for a texture; docs/materials.md describes it.
std::string TextureJson(const jobs::ItemResult& result) {
  nlohmann::ordered_json json;
  json["input"] = result.Input;
  json["outcome"] = OutcomeWord(result.Judged);
  json["files"] = nlohmann::ordered_json::array();
  for (const core::WrittenFile& file : result.Files) json["files"].push_back(file.Path);
  json["seconds"] = result.Seconds;
  json["warnings"] = TroubleLines(result, core::Severity::Warning);
  json["errors"] = TroubleLines(result, core::Severity::Error);
  // Names of files are bytes in no known encoding; JSON takes UTF-8 only.
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

/// The extensions that images can be written with, sorted.
std::set<std::string> WritableEndings(const std::vector<images::KnownFormat>& formats) {
  std::set<std::string> endings;
  for (const images::KnownFormat& format : formats) {
    if (format.Writes) endings.insert(format.Endings.begin(), format.Endings.end());
  }
  return endings;
}

/// Whether images can be written with this extension. If not, it is told with those that can.
bool CanWrite(const std::string& extension, const images::ImageWorker& worker, std::ostream& err) {
  std::string reason;
  const auto formats = images::KnownFormats(worker, &reason);
  if (formats.empty()) {
    err << "Error: " << reason << '\n';
    return false;
  }
  std::string list;
  for (const std::string& ending : WritableEndings(formats)) {
    if (core::EqualIgnoringCase(ending, extension)) return true;
    list += " " + ending;
  }
  err << "Error: images cannot be written as ." << extension << "; choose one of" << list << '\n';
  return false;
}

int ListFormats(Invocation& invocation) {
  std::string reason;
  const auto formats = images::KnownFormats(images::ImageWorker(), &reason);
  for (const std::string& ending : WritableEndings(formats)) invocation.Out << ending << '\n';
  if (formats.empty()) invocation.Err << "Error: " << reason << '\n';
  return formats.empty() ? ExitFailure : ExitSuccess;
}

int ExportTextures(Options& options, Invocation& invocation) {
  options.Directories.FillFromSettings(invocation.Err);
  const jobs::ExportTextures job{.Inputs = options.Inputs,
                                 .Content = options.Directories.ContentFor(options.Inputs, false, invocation.Err),
                                 .Output = options.Output,
                                 .Format = options.Format,
                                 .Recursive = options.Recursive,
                                 .KeepTga = options.KeepTga,
                                 .SdkDirectory = options.Directories.Sdk,
                                 .Start = options.Directories.Start(),
                                 .Threads = options.Jobs};
  const jobs::JobPlan plan = jobs::Plan(job);
  if (!plan.Items.empty()) {
    const std::string& target = plan.Items.front().Target;
    if (!CanWrite(target.substr(target.rfind('.') + 1), images::ImageWorker(), invocation.Err)) return ExitUsage;
  }
  const auto resultLine = [&](const jobs::ItemResult& result) {
    if (options.Json) return TextureJson(result);
    return options.Quiet ? std::string() : FileLines(result);
  };
  const InterruptFlag interrupt;
  ConsoleHost host(invocation.Out, invocation.Err,
                   {.Item = "texture", .Quiet = options.Quiet, .ShowsLog = options.Verbose, .ResultLine = resultLine});
  return ExitCodeOf(jobs::Run(job, host, interrupt.Token()));
}

}  // namespace

void AddVtfVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("vtf", "Write textures as images");
  auto options = std::make_shared<Options>();
  verb->add_option(
      "INPUT", options->Inputs,
      "Textures (.vtf), or folders; on the disk, in an archive (pak01_dir.vpk:materials/brick.vtf), or in the "
      "game (game:materials/brick.vtf)");
  verb->add_option("-o,--output", options->Output,
                   "The image of one INPUT, its extension telling the format; or a folder, made if missing, for an "
                   "image named like each INPUT. Further frames and faces get numbers behind the name")
      ->type_name("FILE|DIR")
      ->capture_default_str();
  verb->add_option("-f,--format", options->Format, "The format of the images in the folder, as an extension (tga)")
      ->type_name("FORMAT");
  verb->add_flag("--list-formats", options->ListFormats, "Print the extensions that can be written");
  verb->add_flag("-r,--recursive", options->Recursive,
                 "Take every .vtf file below a folder; each image gets a path like its own");
  verb->add_option("-j,--jobs", options->Jobs, "Textures at a time")
      ->type_name("N")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  verb->add_flag("--keep-tga", options->KeepTga,
                 "Leave the TGA files that vtf2tga writes beside images of other formats");
  options->Directories.AddOptions(*verb);
  verb->add_flag("--json", options->Json, "Print one JSON object a texture, one a line, on standard output");
  verb->add_flag("-q,--quiet", options->Quiet, "Print errors only");
  verb->add_flag("-v,--verbose", options->Verbose, "Print the command lines and what the tools say");
  verb->footer(Examples);

  CLI::App* info = verb->add_subcommand("info", "Print what textures hold: size, format, flags, frames, mip levels");
  info->add_option("FILE", options->InfoFiles, "Textures (.vtf), on the disk, in an archive or in the game")
      ->required();
  options->Directories.AddGameOption(*info);
  info->add_flag("--json", options->Json, "Print one JSON object a texture, one a line");
  info->footer(InfoExamples);

  verb->callback([options, info, &invocation] {
    if (info->parsed()) {
      invocation.Run = [options, &invocation] {
        const auto content = options->Directories.ContentFor(options->InfoFiles, false, invocation.Err);
        return PrintVtfInfo(options->InfoFiles, options->Json, *content, invocation);
      };
    } else if (options->ListFormats) {
      invocation.Run = [&invocation] { return ListFormats(invocation); };
    } else if (options->Inputs.empty()) {
      throw CLI::RequiredError("INPUT");
    } else {
      invocation.Run = [options, &invocation] { return ExportTextures(*options, invocation); };
    }
  });
}

}  // namespace tarnwick::cli

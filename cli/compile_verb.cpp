#include "cli/compile_verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/console_host.h"
#include "cli/interrupt.h"
#include "cli/project_script.h"
#include "cli/tool_directories.h"
#include "core/paths.h"
#include "jobs/compile_models.h"
#include "tools/studiomdl_command.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli compile --game ~/games/mod crate.qc
  tarnwick-cli compile --materials props crate.sc barrel.sc
  tarnwick-cli compile --sdk "/opt/sdk bin" --wine wine64 --fullcollide crate.qc)";

struct Options {
  std::vector<std::string> Inputs;
  ToolDirectories Directories;
  ProjectScripts Scripts;
  uint32_t Switches = 0;
  bool Json = false;
  bool Quiet = false;
};

/// "Dump Hit Boxes" as an option: "--dump-hit-boxes".
std::string OptionName(std::string_view caption) {
  std::string name = "--" + core::LowerAscii(caption);
  for (char& c : name) {
    if (c == ' ') c = '-';
  }
  return name;
}

/// One line of JSON for a file; docs/running-tools.md describes it.
std::string ResultJson(const jobs::ItemResult& result) {
  const auto isModel = [&](const core::WrittenFile& file) {
    return core::EqualIgnoringCase(core::PathText(core::NativePath(file.Path).extension()), ".mdl");
  };
  nlohmann::ordered_json json;
  json["input"] = result.Input;
  json["outcome"] = OutcomeWord(result.Judged);
  json["command"] = result.CommandLine;
  json["script"] = result.Source;
  json["model"] = result.Target;
  json["written"] = std::any_of(result.Files.begin(), result.Files.end(), isModel);
  json["files"] = nlohmann::ordered_json::array();
  for (const core::WrittenFile& file : result.Files) json["files"].push_back(file.Path);
  json["errors"] = TroubleLines(result, core::Severity::Error);
  json["warnings"] = TroubleLines(result, core::Severity::Warning);
  json["more_errors"] = result.MoreErrors;
  json["more_warnings"] = result.MoreWarnings;
  // A tool's words are bytes in no known encoding; JSON takes UTF-8 only.
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

int CompileModels(Options& options, Invocation& invocation) {
  options.Directories.FillFromSettings(invocation.Err);
  options.Scripts.FillFromSettings(invocation.Err);
  const jobs::CompileModels job{.Inputs = options.Inputs,
                                .Materials = options.Scripts.Materials.value_or(""),
                                .Switches = options.Switches,
                                .SdkDirectory = options.Directories.Sdk,
                                .GameDirectory = options.Directories.Game,
                                .Start = options.Directories.Start()};
  const auto resultLine = [&](const jobs::ItemResult& result) {
    return options.Json ? ResultJson(result) : std::string();
  };
  const InterruptFlag interrupt;
  ConsoleHost host(invocation.Out, invocation.Err,
                   {.Item = "file",
                    .Quiet = options.Quiet,
                    .ToolLines = options.Json ? &invocation.Err : &invocation.Out,
                    .ShowsProgress = false,
                    .ResultLine = resultLine});
  const int exitCode = ExitCodeOf(jobs::Run(job, host, interrupt.Token()));
  if (jobs::ObstacleOf(job)) invocation.Err << SdkAdvice << '\n';
  return exitCode;
}

}  // namespace

void AddCompileVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("compile", "Compile model projects and QC scripts with the SDK's studiomdl");
  auto options = std::make_shared<Options>();
  verb->add_option("PROJECT.sc|FILE.qc", options->Inputs, "Model projects, or scripts; one is run after the other")
      ->required();
  options->Directories.AddOptions(*verb);
  options->Scripts.AddOptions(*verb);
  for (const tools::StudiomdlOption& option : tools::StudiomdlOptions) {
    if (option.Switch.empty()) continue;
    verb->add_flag_callback(
        OptionName(option.Caption), [options, bit = option.Bit] { options->Switches |= bit; },
        "Run studiomdl with" + std::string(option.Switch) + ", besides what a project asks for");
  }
  verb->add_flag("--json", options->Json,
                 "Print one JSON object a file, one a line, on standard output; the tool's lines go to standard error");
  verb->add_flag("-q,--quiet", options->Quiet, "Print errors and warnings only");
  verb->footer(Examples);
  verb->callback([options, &invocation] {
    invocation.Run = [options, &invocation] { return CompileModels(*options, invocation); };
  });
}

}  // namespace tarnwick::cli

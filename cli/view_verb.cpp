#include "cli/view_verb.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/tool_directories.h"
#include "core/paths.h"
#include "tools/hlmv_command.h"
#include "tools/tool_file.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli view props/crate.mdl
  tarnwick-cli view --game ~/games/mod ~/games/mod/models/props/crate.mdl)";

struct Options {
  std::string Model;
  bool Json = false;
  ToolDirectories Directories;
};

int View(Options options, Invocation& invocation) {
  options.Directories.FillFromSettings(invocation.Err);
  const std::string& game = options.Directories.Game;
  const std::string modelFile = tools::ModelFileOf(game, options.Model);
  const std::string path = game + "/models/" + modelFile;
  std::vector<std::string> warnings;
  if (game.empty()) {
    warnings.emplace_back("no game directory is set");
  } else if (!core::FindIgnoringCase(path)) {
    warnings.push_back("there is no model " + path);
  }
  for (const std::string& warning : warnings) invocation.Err << "Warning: " << warning << '\n';
  const process::Command command = tools::HlmvCommand(options.Directories.Sdk, game, modelFile);
  const auto error = tools::StartHlmv(command, options.Directories.Start());
  const std::string failure = error ? tools::HlmvErrorText(command) + ": " + error->Message : std::string();
  if (options.Json) {
    nlohmann::ordered_json json{{"model", options.Model},         {"outcome", error ? "failed" : "ok"},
                                {"program", command.Program},     {"parameters", command.Shown.substr(1)},
                                {"arguments", command.Arguments}, {"warnings", warnings}};
    if (error) json["error"] = failure;
    invocation.Out << json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
  }
  if (error) {
    invocation.Err << failure << '\n';
    if (!tools::ToolExists(command.Program)) invocation.Err << SdkAdvice << '\n';
    return ExitFailure;
  }
  if (!options.Json) invocation.Out << command.Line() << '\n';
  return ExitSuccess;
}

}  // namespace

void AddViewVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("view", "Show a compiled model in the SDK's model viewer, hlmv");
  auto options = std::make_shared<Options>();
  verb->add_option("MODEL", options->Model, "A model of the game: its path, or that below the game's models folder")
      ->required();
  options->Directories.AddOptions(*verb);
  verb->add_flag("--json", options->Json, "Print what was started, or why not, as a JSON object");
  verb->footer(Examples);
  verb->callback(
      [options, &invocation] { invocation.Run = [options, &invocation] { return View(*options, invocation); }; });
}

}  // namespace tarnwick::cli

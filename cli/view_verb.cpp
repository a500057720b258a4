#include "cli/view_verb.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/interrupt.h"
#include "cli/tool_directories.h"
#include "core/paths.h"
#include "jobs/input_content.h"
#include "jobs/scratch_directory.h"
#include "jobs/unpacked_model.h"
#include "tools/hlmv_command.h"
#include "tools/tool_file.h"
#include "tools/tool_run.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli view props/crate.mdl
  tarnwick-cli view --game ~/games/mod ~/games/mod/models/props/crate.mdl
  tarnwick-cli view pak01_dir.vpk:models/props/crate.mdl)";

struct Options {
  std::string Model;
  bool Json = false;
  ToolDirectories Directories;
};

std::string PathInGame(const Options& options) {
  const std::string& game = options.Directories.Game;
  return game + "/models/" + tools::ModelFileOf(game, options.Model);
}

/// Starts hlmv; why it cannot be started.
using Start = std::function<std::optional<process::SystemError>(const process::Command& command)>;

/// Starts it and lets it go its own way.
Start Alone(const Options& options) {
  return [&options](const process::Command& command) { return tools::StartHlmv(command, options.Directories.Start()); };
}

int Show(const Options& options, const process::Command& command, const std::vector<std::string>& warnings,
         const Start& start, Invocation& invocation) {
  for (const std::string& warning : warnings) invocation.Err << "Warning: " << warning << '\n';
  const auto error = start(command);
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

/// Says why nothing is started.
int Refuse(const Options& options, const std::string& reason, Invocation& invocation) {
  if (options.Json) {
    const nlohmann::ordered_json json{{"model", options.Model}, {"outcome", "failed"}, {"error", reason}};
    invocation.Out << json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
  }
  invocation.Err << "Error: " << reason << '\n';
  return ExitFailure;
}

/// Shows a model in the program's own viewer, in `own`, which opens it wherever it lies.
int ShowInOwn(const Options& options, const std::string& own, Invocation& invocation) {
  const std::string& game = options.Directories.Game;
  std::string shown = options.Model;
  bool found = false;
  if (jobs::IsOnDisk(options.Model)) {
    auto path = core::FindIgnoringCase(options.Model);
    if (!path && !game.empty()) path = core::FindIgnoringCase(PathInGame(options));
    found = path.has_value();
    std::error_code error;
    // The viewer has a current folder of its own.
    if (found) shown = core::PathText(std::filesystem::absolute(core::NativePath(*path), error));
  } else {
    found = jobs::InputContent(game).Files().Holds(options.Model);
  }
  if (!found) return Refuse(options, "there is no model " + options.Model, invocation);
  return Show(options, tools::HlmvCommandForFile(own, game, shown), {}, Alone(options), invocation);
}

/// Shows a model that is in an archive or a game: hlmv gets a copy on the disk, which is there until it ends.
int ViewUnpacked(const Options& options, Invocation& invocation) {
  const jobs::InputContent content(options.Directories.Game);
  const jobs::ScratchDirectory scratch;
  std::string reason = scratch.Problem();
  const auto path = scratch.Path().empty()
                        ? std::nullopt
                        : jobs::UnpackModel(options.Model, content.Files(), core::PathText(scratch.Path()), reason);
  if (!path) return Refuse(options, reason, invocation);
  std::vector<std::string> warnings;
  if (options.Directories.Game.empty()) warnings.emplace_back("no game directory is set");
  const InterruptFlag interrupt;
  const auto run = [&](const process::Command& command) -> std::optional<process::SystemError> {
    tools::ToolRunOptions how;
    how.Start = options.Directories.Start();
    how.Stop = interrupt.Token();
    how.AnnounceStart = false;
    how.MostMemory = 0;
    const auto finished = tools::RunTool(tools::ToolRun::Vtf2tga, command, how);
    return finished.Outcome.Failure ? std::optional(finished.Outcome.Failure->Error) : std::nullopt;
  };
  const auto command = tools::HlmvCommandForFile(options.Directories.Sdk, options.Directories.Game, *path);
  return Show(options, command, warnings, run, invocation);
}

int View(Options options, Invocation& invocation) {
  options.Directories.FillFromSettings(invocation.Err);
  if (!tools::RunsHlmv(options.Directories.Sdk, options.Directories.Start())) {
    if (const auto own = tools::OwnToolDirectory(tools::Hlmv)) return ShowInOwn(options, *own, invocation);
  }
  if (!jobs::IsOnDisk(options.Model)) return ViewUnpacked(options, invocation);
  const std::string& game = options.Directories.Game;
  std::vector<std::string> warnings;
  if (game.empty()) {
    warnings.emplace_back("no game directory is set");
  } else if (!core::FindIgnoringCase(PathInGame(options))) {
    warnings.push_back("there is no model " + PathInGame(options));
  }
  const auto command = tools::HlmvCommand(options.Directories.Sdk, game, tools::ModelFileOf(game, options.Model));
  return Show(options, command, warnings, Alone(options), invocation);
}

}  // namespace

void AddViewVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb =
      program.add_subcommand("view", "Show a compiled model in the SDK's model viewer, hlmv, or in our own");
  auto options = std::make_shared<Options>();
  verb->add_option("MODEL", options->Model,
                   "A model of the game: its path, or that below the game's models folder; or one in an archive "
                   "(pak01_dir.vpk:models/crate.mdl) or anywhere in the game (game:models/crate.mdl), of which the "
                   "SDK's viewer gets a copy that is there until it ends")
      ->required();
  options->Directories.AddOptions(*verb);
  verb->add_flag("--json", options->Json, "Print what was started, or why not, as a JSON object");
  verb->footer(Examples);
  verb->callback(
      [options, &invocation] { invocation.Run = [options, &invocation] { return View(*options, invocation); }; });
}

}  // namespace tarnwick::cli

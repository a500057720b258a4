#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "core/app_settings.h"
#include "jobs/input_content.h"
#include "tools/program_start.h"
#include "tools/sdk_tools.h"

namespace CLI {
class App;
}

namespace tarnwick::cli {

/// The user's settings, which the window keeps too; null in a build that has no store. A damaged store is told on
/// `err`.
std::unique_ptr<core::AppSettings> OpenSettings(std::ostream& err);

/// What to do about a tool that is not found.
extern const char* const SdkAdvice;

/// Where tools and game lie, as the options of a verb say: --sdk, --game, --wine. What is not given comes from the
/// user's settings.
struct ToolDirectories {
  std::string Sdk;
  std::string Game;
  std::string Wine;
  bool UncommonFormats = true;  // of images, all that are known; the settings alone say so

  /// Adds the options to `verb`. The object outlives the parsing.
  void AddOptions(CLI::App& verb);
  /// Adds --game alone.
  void AddGameOption(CLI::App& verb);
  /// Adds them to a verb that needs no game: all but --game.
  void AddSdkOptions(CLI::App& verb);
  /// Fills what was not given from the settings.
  void FillFromSettings(std::ostream& err);
  tools::StartSettings Start() const { return {Wine}; }
  /// By what a job has `inputs`. Where none of them is a name in an archive or a game, the settings are not asked for a
  /// game unless `askForGame`.
  std::shared_ptr<jobs::InputContent> ContentFor(const std::vector<std::string>& inputs, bool askForGame,
                                                 std::ostream& err);
};

}  // namespace tarnwick::cli

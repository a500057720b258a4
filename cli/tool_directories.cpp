#include "cli/tool_directories.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "archives/archive_name.h"
#include "core/settings_table.h"
#ifdef TARNWICK_HAS_SETTINGS
#include "settings/qt_settings_store.h"
#endif

namespace tarnwick::cli {

#ifdef TARNWICK_HAS_SETTINGS
const char* const SdkAdvice =
    "Name the folder of the SDK's tools with --sdk, or store it: tarnwick-cli config set "
    "SDKDirectory DIR";
#else
const char* const SdkAdvice = "Name the folder of the SDK's tools with --sdk";
#endif

std::unique_ptr<core::AppSettings> OpenSettings([[maybe_unused]] std::ostream& err) {
#ifdef TARNWICK_HAS_SETTINGS
  return std::make_unique<settings::QtSettingsStore>(
      [&err](const std::string& text) { err << "Warning: " << text << '\n'; });
#else
  return nullptr;
#endif
}

void ToolDirectories::AddSdkOptions(CLI::App& verb) {
  verb.add_option("--sdk", Sdk, "The folder of the SDK's tools; without it the one that is set in the window")
      ->type_name("DIR");
#ifndef _WIN32
  verb.add_option("--wine", Wine, "The program that runs Windows tools; without it wine, then wine64")
      ->type_name("PROGRAM");
#endif
}

void ToolDirectories::AddOptions(CLI::App& verb) {
  AddSdkOptions(verb);
  AddGameOption(verb);
}

void ToolDirectories::AddGameOption(CLI::App& verb) {
  verb.add_option("--game", Game, "The game directory, with gameinfo.txt; without it the one that is set in the window")
      ->type_name("DIR");
}

std::shared_ptr<jobs::InputContent> ToolDirectories::ContentFor(const std::vector<std::string>& inputs, bool askForGame,
                                                                std::ostream& err) {
  const bool needsGame = askForGame || std::any_of(inputs.begin(), inputs.end(), [](const std::string& input) {
                           return archives::HasArchiveExtension(input) || !jobs::IsOnDisk(input);
                         });
  if (needsGame && Game.empty()) FillFromSettings(err);
  return std::make_shared<jobs::InputContent>(Game);
}

void ToolDirectories::FillFromSettings(std::ostream& err) {
  const auto settings = OpenSettings(err);
  if (!settings) return;
  const auto fill = [&](std::string& directory, const core::TextSetting& setting) {
    if (directory.empty()) directory = setting.Read(*settings);
  };
  fill(Sdk, core::setting::SdkDirectory);
  fill(Game, core::setting::GameDirectory);
  fill(Wine, core::setting::WineProgram);
  UncommonFormats = core::setting::UncommonImageFormats.Read(*settings) != 0;
}

}  // namespace tarnwick::cli

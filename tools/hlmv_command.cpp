#include "tools/hlmv_command.h"

#include <algorithm>

#include "core/paths.h"

namespace tarnwick::tools {

HlmvCommand BuildHlmvCommand(std::string_view sdkDirectory, std::string_view gameDirectory,
                             std::string_view modelFile) {
  HlmvCommand command;
  command.Program = std::string(sdkDirectory) + "\\hlmv.exe";
  command.Parameters = "-game \"" + std::string(gameDirectory) + "\" \"" + std::string(gameDirectory) + "/models/" +
                       std::string(modelFile) + "\"";
  return command;
}

std::optional<SystemError> StartHlmv(const HlmvCommand& command, const StartSettings& settings) {
  return LaunchDetached(command.Program, command.Parameters, settings);
}

std::string ModelFileOf(std::string_view gameDirectory, std::string_view model) {
  const auto comparable = [](std::string_view path) {
    std::string text = core::LowerAscii(path);
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
  };
  std::string models = comparable(gameDirectory);
  while (!models.empty() && models.back() == '/') models.pop_back();
  models += "/models/";
  const bool below = model.size() > models.size() && comparable(model.substr(0, models.size())) == models;
  return std::string(below ? model.substr(models.size()) : model);
}

}  // namespace tarnwick::tools

#include "tools/hlmv_command.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "core/paths.h"
#include "core/whole_path.h"
#include "tools/tool_file.h"

namespace tarnwick::tools {

namespace fs = std::filesystem;

namespace {

/// The path of the file `model`, which is named from the current folder, below `models`; empty if it does not lie
/// there.
std::string PathBelow(const std::string& models, std::string_view model) {
  std::error_code error;
  const fs::path file = core::RealPath(core::NativePath(model), error);
  if (error) return {};
  const fs::path folder = core::RealPath(core::NativePath(models), error);
  if (error) return {};
  const fs::path below = file.lexically_relative(folder);
  const bool isBelow = !below.empty() && below != "." && *below.begin() != "..";
  return isBelow ? core::PathText(below) : std::string();
}

}  // namespace

process::Command HlmvCommand(std::string_view sdkDirectory, std::string_view gameDirectory,
                             std::string_view modelFile) {
  return HlmvCommandForFile(sdkDirectory, gameDirectory,
                            std::string(gameDirectory) + "/models/" + std::string(modelFile));
}

process::Command HlmvCommandForFile(std::string_view sdkDirectory, std::string_view gameDirectory,
                                    const std::string& path) {
  process::Command command{std::string(sdkDirectory) + core::PathSeparator + "hlmv.exe"};
  command.Word("-game").InQuotes(std::string(gameDirectory)).InQuotes(path);
  return command;
}

bool RunsHlmv(std::string_view sdkDirectory, const StartSettings& settings) {
  const process::Command command = HlmvCommand(sdkDirectory, {}, {});
  if (sdkDirectory.empty() || !ToolExists(command.Program)) return false;
  ProgramStart ignored;
  const auto error = PrepareStart(command, settings, ignored);
  return !error || error->Code != ENOEXEC;
}

std::optional<process::SystemError> StartHlmv(const process::Command& command, const StartSettings& settings) {
  ProgramStart start;
  if (auto error = PrepareStart(command, settings, start)) return error;
  return process::StartDetached(start.Command, start.Options);
}

std::string HlmvErrorText(const process::Command& command) {
  return "Error starting " + command.Program;
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
  if (below) return std::string(model.substr(models.size()));
  const std::string folder = std::string(gameDirectory) + "/models/";
  if (core::FindIgnoringCase(folder + std::string(model))) return std::string(model);
  const std::string found = PathBelow(folder, model);
  return found.empty() ? std::string(model) : found;
}

}  // namespace tarnwick::tools

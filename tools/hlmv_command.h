#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tools/child_process.h"

namespace tarnwick::tools {

/// What the shell is asked to open to view a model.
struct HlmvCommand {
  std::string Program;
  std::string Parameters;

  /// "Error starting <Program>", for the box that tells of a failed start.
  std::string ErrorText() const { return "Error starting " + Program; }
};

/// The call of hlmv that shows `modelFile`, which is relative to the game's models directory.
HlmvCommand BuildHlmvCommand(std::string_view sdkDirectory, std::string_view gameDirectory, std::string_view modelFile);

/// Starts hlmv without waiting for it. A failure is told by the system's error.
std::optional<SystemError> StartHlmv(const HlmvCommand& command, const StartSettings& settings);

/// The path of `model` below the models directory of `gameDirectory`: a path that lies in that directory (either slash,
/// any case), or a file that does by way of the current folder or of links, loses the directory; any other text stays.
std::string ModelFileOf(std::string_view gameDirectory, std::string_view model);

}  // namespace tarnwick::tools

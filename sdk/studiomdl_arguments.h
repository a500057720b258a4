#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tarnwick::sdk {

/// What the command line of studiomdl asks for.
struct StudiomdlRequest {
  std::string Script;
  std::string GameDirectory;  // "" if none was named
  int32_t Version = 48;       // of the model: 44, 48 or 49
  bool Quiet = false;
  bool PrintBones = false;
  bool DefineBones = false;
  bool DumpHitboxes = false;
  /// Switches of the SDK's tool that have no meaning here, each once, as they were typed.
  std::vector<std::string> PassedOver;
};

/// Reads the arguments; switches may stand ahead of the script and behind it. Nothing, with the `reason`, if an
/// argument is wrong.
std::optional<StudiomdlRequest> ReadStudiomdlArguments(std::span<const std::string> arguments, std::string& reason);

}  // namespace tarnwick::sdk

#pragma once

#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace tarnwick::sdk {

/// What the model viewer is started with.
struct HlmvRequest {
  std::string GameDirectory = {};        // "" for none
  std::vector<std::string> Models = {};  // as they are opened; each in a window of its own
  bool WantsHelp = false;
};

/// The help of the model viewer.
extern const char* const HlmvHelp;

/// Reads the command line, without the program's own name: `-game DIR` and models. A model that is not at its path is
/// taken for one of the game, by its path below the game's folder `models`, in any case. Nothing, with the reason
/// printed to `err`, if it is wrong.
std::optional<HlmvRequest> ReadHlmvArguments(std::span<const std::string> arguments, std::ostream& err);

}  // namespace tarnwick::sdk

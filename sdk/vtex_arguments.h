#pragma once

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tarnwick::sdk {

/// What the command line of vtex asks for.
struct VtexRequest {
  std::vector<std::string> Inputs;
  std::string Shader;                                           // empty: none was named
  std::vector<std::pair<std::string, std::string>> Parameters;  // -vmtparam, in order
  std::string OutputFolder;                                     // empty: by the path of each input
  bool Quiet = false;
  bool Fast = false;  // quick fit of DXT blocks
};

/// Reads the arguments. A parameter's value is the next word. A value that is a number takes the numbers that follow
/// it, and one that opens a bracket the words up to the closing one; several numbers, also in one word, become a
/// vector:
///
///     -vmtparam $envmaptint .5 .5 .4 brick.tga    ->  "$envmaptint" "[.5 .5 .4]", input brick.tga
///
/// Nothing, with the `reason`, if an argument is wrong.
std::optional<VtexRequest> ReadVtexArguments(std::span<const std::string> arguments, std::string& reason);

}  // namespace tarnwick::sdk

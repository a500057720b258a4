#include "sdk/hlmv_arguments.h"

#include "core/paths.h"
#include "sdk/tool_console.h"

namespace tarnwick::sdk {

const char* const HlmvHelp = R"(Usage: hlmv [-game DIR] [MODEL...]

Shows compiled models (.mdl) and meshes (.smd), each in a window of its own.

  -game DIR   the game in which materials are looked for too, and whose models may be named by their path below its
              folder "models"
  -help       print this

Example: hlmv -game "/home/ada/mod" "/home/ada/mod/models/props/crate.mdl"
)";

namespace {

/// Where `model` lies: at its path, or below the models of the game; its path as it is where it is at neither place,
/// so that the window can say so.
std::string PlaceOf(const std::string& model, const std::string& game) {
  if (const auto found = core::FindIgnoringCase(model)) return *found;
  if (game.empty()) return model;
  return core::FindIgnoringCase(game + "/models/" + model).value_or(model);
}

}  // namespace

std::optional<HlmvRequest> ReadHlmvArguments(std::span<const std::string> arguments, std::ostream& err) {
  HlmvRequest request;
  const auto refuse = [&](const std::string& why) {
    err << "Error: " << why << "; see hlmv -help\n";
    return std::nullopt;
  };
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (IsHelpSwitch(argument)) {
      request.WantsHelp = true;
    } else if (IsSwitch(argument, "-game")) {
      if (++i == arguments.size()) return refuse("-game must be followed by a directory");
      request.GameDirectory = arguments[i];
    } else if (IsSwitch(argument, "-nopause")) {
      continue;  // as the other tools take it
    } else if (LooksLikeSwitch(argument)) {
      return refuse("unknown switch " + argument);
    } else if (argument.empty()) {
      return refuse("a model without a name");
    } else {
      request.Models.push_back(argument);
    }
  }
  for (std::string& model : request.Models) model = PlaceOf(model, request.GameDirectory);
  return request;
}

}  // namespace tarnwick::sdk

#pragma once

#include <ostream>
#include <span>
#include <string>

namespace tarnwick::sdk {

/// The tool studiomdl: compiles a script into a model of a game; `-help` tells its switches. Returns ToolSuccess,
/// ToolFailure (nothing was written, the reasons were printed) or ToolWrongUsage.
int Studiomdl(std::span<const std::string> arguments, std::ostream& out, std::ostream& err);

}  // namespace tarnwick::sdk

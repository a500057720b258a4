#pragma once

#include <ostream>
#include <span>
#include <string>

namespace tarnwick::sdk {

/// The tool vtex: makes textures and materials of TGA files; `-help` tells its switches. Returns ToolSuccess,
/// ToolFailure (an input failed, the others were made) or ToolWrongUsage.
int Vtex(std::span<const std::string> arguments, std::ostream& out, std::ostream& err);

}  // namespace tarnwick::sdk

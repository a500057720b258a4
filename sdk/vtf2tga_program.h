#pragma once

#include <ostream>
#include <span>
#include <string>

namespace tarnwick::sdk {

/// The tool vtf2tga: writes the largest image of a texture as an uncompressed TGA file, or prints the facts of the
/// texture; `-help` tells its switches. Returns ToolSuccess, ToolFailure or ToolWrongUsage.
int Vtf2Tga(std::span<const std::string> arguments, std::ostream& out, std::ostream& err);

}  // namespace tarnwick::sdk

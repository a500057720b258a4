#pragma once

#include <string>
#include <string_view>

#include "process/command.h"

namespace tarnwick::tools {

/// The output that is suggested for the VTF file at `input`: its path with the ending "tga". Without an ending one is
/// added.
std::string SuggestOutputName(std::string_view input);

/// The call of vtf2tga.
process::Command Vtf2tgaCommand(std::string_view sdkDirectory, std::string_view input, std::string_view tgaPath);

}  // namespace tarnwick::tools

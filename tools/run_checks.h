#pragma once

#include <string>
#include <vector>

#include "tools/vtex_command.h"

namespace tarnwick::tools {

/// What looks wrong before a tool is run, a warning each. The tool is run all the same: it may know better, and its own
/// words are shown.
using RunWarnings = std::vector<std::string>;

/// Before studiomdl: the script is there, the game directory is one, and the model can be written below it.
RunWarnings CheckStudiomdlRun(const std::string& gameDirectory, const std::string& qcPath);

/// Before vtex: the images are there, the game directory is one, and its materials can be written.
RunWarnings CheckVtexRun(const std::string& gameDirectory, const std::string& outputSubdirectory,
                         const ConvertedMaps& maps);

/// Before vtf2tga: the input is there, and the output's folder is there and can be written.
RunWarnings CheckVtf2tgaRun(const std::string& input, const std::string& tgaPath);

}  // namespace tarnwick::tools

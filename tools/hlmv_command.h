#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "process/child_process.h"
#include "tools/program_start.h"

namespace tarnwick::tools {

/// The call of hlmv that shows `modelFile`, which is relative to the game's models directory.
process::Command HlmvCommand(std::string_view sdkDirectory, std::string_view gameDirectory, std::string_view modelFile);

/// The call that shows the model at `path`, wherever that lies.
process::Command HlmvCommandForFile(std::string_view sdkDirectory, std::string_view gameDirectory,
                                    const std::string& path);

/// Whether the SDK has an hlmv that runs here; a Windows program without a Wine that runs it is as good as none.
bool RunsHlmv(std::string_view sdkDirectory, const StartSettings& settings);

/// Starts hlmv without waiting for it. A failure is told by the system's error.
std::optional<process::SystemError> StartHlmv(const process::Command& command, const StartSettings& settings);

/// "Error starting <program>", for the box that tells of a failed start.
std::string HlmvErrorText(const process::Command& command);

/// The path of `model` below the models directory of `gameDirectory`: a path that lies in that directory (either slash,
/// any case), or a file that does by way of the current folder or of links, loses the directory; any other text stays.
std::string ModelFileOf(std::string_view gameDirectory, std::string_view model);

}  // namespace tarnwick::tools

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/report.h"

namespace tarnwick::tools {

/// A console tool of the SDK: its name without an ending, and the caption of the box that tells of trouble with it.
struct SdkTool {
  std::string_view Name;
  std::string_view ErrorCaption;
};

inline constexpr SdkTool Studiomdl{"studiomdl", "STUDIOMDL ERROR"};
inline constexpr SdkTool Vtex{"vtex", "VTEX ERROR"};
inline constexpr SdkTool Vtf2tga{"vtf2tga", "VTF2TGA ERROR"};

/// The path of `tool` as it stands at the start of its command line, with slashes only.
std::string SdkToolPath(std::string_view sdkDirectory, const SdkTool& tool);

/// What to tell the user if the tool at `toolPath` is not there: to set the SDK path. Nothing if it is.
[[nodiscard]] std::optional<core::Trouble> MissingTool(const std::string& toolPath, const SdkTool& tool);

/// Whether the tool at `toolPath` is there. If it is not, the user is told so.
[[nodiscard]] bool RequireTool(const std::string& toolPath, const SdkTool& tool, core::Report& report);

/// The folder of the program's own texture tools, vtex and vtf2tga, which serve where no SDK is installed. Nothing if
/// they do not lie beside the running program.
std::optional<std::string> BundledSdkDirectory();

/// The folder to take `tool` from: `sdkDirectory` if one is set, else the bundled one if the tool is there, else "".
std::string SdkDirectoryOrBundled(const std::string& sdkDirectory, const SdkTool& tool);

}  // namespace tarnwick::tools

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
inline constexpr SdkTool Hlmv{"hlmv", "HLMV ERROR"};  // the model viewer, which is no console tool

/// The path of `tool` as it stands at the start of its command line, with slashes only.
std::string SdkToolPath(std::string_view sdkDirectory, const SdkTool& tool);

/// What to tell the user if the tool at `toolPath` is not there: to set the SDK path. Nothing if it is.
[[nodiscard]] std::optional<core::Trouble> MissingTool(const std::string& toolPath, const SdkTool& tool);

/// Whether the tool at `toolPath` is there. If it is not, the user is told so.
[[nodiscard]] bool RequireTool(const std::string& toolPath, const SdkTool& tool, core::Report& report);

/// The folder of the program's own tools, which stand in where the SDK has none. Nothing if none of them lies there.
std::optional<std::string> BundledSdkDirectory();

/// Where a tool is taken from.
struct ToolChoice {
  std::string Directory = {};  // to be handed to SdkToolPath
  bool StandsIn = false;       // one of the program's own, since the directory that was asked for lacks it
};

/// The tool that runs for `tool`: the SDK's if it is in `sdkDirectory`, else the program's own. Each tool is looked for
/// by itself, so a directory that lacks one hides none of the others. Where there is neither, the SDK's directory, and
/// RequireTool tells that it is missing.
ToolChoice ToolInUse(const std::string& sdkDirectory, const SdkTool& tool);

/// Whether a tool of the SDK, and not only the program's own, lies in `sdkDirectory`; the model viewer counts too.
bool HoldsSdkTools(const std::string& sdkDirectory);

/// The program's own tool alone, for what no SDK's tool can do. Nothing if it is not there.
std::optional<std::string> OwnToolDirectory(const SdkTool& tool);

/// What a page and the command line say of a tool of ours that stands in: "studiomdl: our own".
std::string OwnToolNote(const SdkTool& tool);

/// What a page says of the tools in use: "studiomdl: our own, vtex: the SDK's, vtf2tga: not found".
std::string ToolsInUseText(const std::string& sdkDirectory);

}  // namespace tarnwick::tools

#include "tools/sdk_tools.h"

#include <algorithm>
#include <utility>

#include "core/paths.h"
#include "core/program_directory.h"
#include "core/same_folder.h"
#include "tools/tool_file.h"

namespace tarnwick::tools {

namespace {

constexpr const char* BundledFolder = "sdk";

constexpr SdkTool AllTools[] = {Studiomdl, Vtex, Vtf2tga};

std::string OwnFolder() {
  return core::ProgramDirectory() + core::PathSeparator + BundledFolder;
}

}  // namespace

std::string SdkToolPath(std::string_view sdkDirectory, const SdkTool& tool) {
  std::string path(sdkDirectory);
  path += '/';
  path += tool.Name;
  path += ".exe";
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

std::optional<core::Trouble> MissingTool(const std::string& toolPath, const SdkTool& tool) {
  if (ToolExists(toolPath)) return std::nullopt;
  return core::Trouble{
      .Kind = core::TroubleKind::Missing,
      .File = toolPath,
      .Text = "Command " + toolPath + " not found.\r\nPlease set correct HL2 SDK path using configure button",
      .Caption = std::string(tool.ErrorCaption)};
}

bool RequireTool(const std::string& toolPath, const SdkTool& tool, core::Report& report) {
  const auto missing = MissingTool(toolPath, tool);
  if (missing) report.Tell(*missing);
  return !missing;
}

std::optional<std::string> BundledSdkDirectory() {
  const std::string folder = OwnFolder();
  for (const SdkTool& tool : AllTools) {
    if (ToolExists(SdkToolPath(folder, tool))) return folder;
  }
  return std::nullopt;
}

bool HoldsSdkTools(const std::string& sdkDirectory) {
  if (sdkDirectory.empty() || core::IsSameFolder(sdkDirectory, OwnFolder())) return false;
  return ToolExists(SdkToolPath(sdkDirectory, Hlmv)) ||
         std::any_of(std::begin(AllTools), std::end(AllTools),
                     [&](const SdkTool& tool) { return ToolExists(SdkToolPath(sdkDirectory, tool)); });
}

std::optional<std::string> OwnToolDirectory(const SdkTool& tool) {
  const std::string folder = OwnFolder();
  if (!ToolExists(SdkToolPath(folder, tool))) return std::nullopt;
  return folder;
}

ToolChoice ToolInUse(const std::string& sdkDirectory, const SdkTool& tool) {
  if (!sdkDirectory.empty() && ToolExists(SdkToolPath(sdkDirectory, tool))) {
    return {sdkDirectory, false};
  }
  if (auto own = OwnToolDirectory(tool)) return {std::move(*own), true};
  return {sdkDirectory, false};
}

std::string OwnToolNote(const SdkTool& tool) {
  return std::string(tool.Name) + ": our own";
}

std::string ToolsInUseText(const std::string& sdkDirectory) {
  std::string text;
  for (const SdkTool& tool : AllTools) {
    const ToolChoice choice = ToolInUse(sdkDirectory, tool);
    if (!text.empty()) text += ", ";
    if (choice.StandsIn || core::IsSameFolder(choice.Directory, OwnFolder())) {
      text += OwnToolNote(tool);
    } else {
      const bool found = !choice.Directory.empty() && ToolExists(SdkToolPath(choice.Directory, tool));
      text += std::string(tool.Name) + (found ? ": the SDK's" : ": not found");
    }
  }
  return text;
}

}  // namespace tarnwick::tools

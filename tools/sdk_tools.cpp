#include "tools/sdk_tools.h"

#include <algorithm>

#include "core/paths.h"
#include "core/program_directory.h"
#include "tools/tool_file.h"

namespace tarnwick::tools {

namespace {

constexpr const char* BundledFolder = "sdk";

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
  const std::string folder = core::ProgramDirectory() + core::PathSeparator + BundledFolder;
  if (!ToolExists(SdkToolPath(folder, Vtex)) || !ToolExists(SdkToolPath(folder, Vtf2tga))) return std::nullopt;
  return folder;
}

std::string SdkDirectoryOrBundled(const std::string& sdkDirectory, const SdkTool& tool) {
  if (!sdkDirectory.empty()) return sdkDirectory;
  const auto bundled = BundledSdkDirectory();
  return bundled && ToolExists(SdkToolPath(*bundled, tool)) ? *bundled : std::string();
}

}  // namespace tarnwick::tools

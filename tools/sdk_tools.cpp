#include "tools/sdk_tools.h"

#include <algorithm>
#include <filesystem>

#ifdef _WIN32
#include <windows.h>
#endif

#include "core/paths.h"
#include "tools/tool_file.h"

namespace tarnwick::tools {

namespace fs = std::filesystem;

namespace {

constexpr const char* BundledFolder = "sdk";

/// The file of the running program; empty if the system does not tell.
fs::path OwnProgram() {
#ifdef _WIN32
  std::wstring name(MAX_PATH, 0);
  while (true) {
    const DWORD size = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    if (size < name.size()) return fs::path(name.substr(0, size));
    name.resize(name.size() * 2);
  }
#else
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error);
#endif
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

bool RequireTool(const std::string& toolPath, const SdkTool& tool, core::Report& report) {
  if (ToolExists(toolPath)) return true;
  report.ErrorBox("Command " + toolPath + " not found.\r\nPlease set correct HL2 SDK path using configure button",
                  tool.ErrorCaption);
  return false;
}

std::optional<std::string> BundledSdkDirectory() {
  const std::string folder = core::PathText(OwnProgram().parent_path() / BundledFolder);
  if (!ToolExists(SdkToolPath(folder, Vtex)) || !ToolExists(SdkToolPath(folder, Vtf2tga))) return std::nullopt;
  return folder;
}

std::string SdkDirectoryOrBundled(const std::string& sdkDirectory, const SdkTool& tool) {
  if (!sdkDirectory.empty()) return sdkDirectory;
  const auto bundled = BundledSdkDirectory();
  return bundled && ToolExists(SdkToolPath(*bundled, tool)) ? *bundled : std::string();
}

}  // namespace tarnwick::tools

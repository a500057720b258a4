#include "tools/run_checks.h"

#include <algorithm>
#include <filesystem>

#include "core/paths.h"
#include "qc/script.h"
#include "tools/folder_access.h"

namespace tarnwick::tools {

namespace fs = std::filesystem;

namespace {

void CheckInput(const std::string& path, const char* what, RunWarnings& warnings) {
  if (path.empty()) {
    warnings.push_back("no " + std::string(what) + " is named");
  } else if (!core::FileExists(path)) {
    warnings.push_back("the " + std::string(what) + " " + path + " does not exist");
  }
}

/// Whether the game directory is there at all, so that looking below it makes sense.
bool CheckGameDirectory(const std::string& gameDirectory, RunWarnings& warnings) {
  std::error_code error;
  if (gameDirectory.empty()) {
    warnings.push_back("no game directory is set");
    return false;
  }
  if (!fs::is_directory(core::NativePath(gameDirectory), error)) {
    warnings.push_back("the game directory " + gameDirectory + " does not exist");
    return false;
  }
  if (!core::FindIgnoringCase(gameDirectory + "/gameinfo.txt")) {
    warnings.push_back("there is no gameinfo.txt in the game directory " + gameDirectory);
  }
  return true;
}

void CheckOutputFolder(const std::string& folder, RunWarnings& warnings) {
  if (const auto reason = WhyNotWritable(folder)) {
    warnings.push_back("the tool cannot write to " + folder + " (" + *reason + ")");
  }
}

}  // namespace

RunWarnings CheckStudiomdlRun(const std::string& gameDirectory, const std::string& qcPath) {
  RunWarnings warnings;
  CheckInput(qcPath, "QC file", warnings);
  if (!CheckGameDirectory(gameDirectory, warnings)) return warnings;
  std::string folder = gameDirectory + "/models/";
  if (const auto model = qc::FindModelName(qcPath)) folder += core::DirectoryWithSeparator(*model);
  CheckOutputFolder(folder, warnings);
  return warnings;
}

RunWarnings CheckVtexRun(const std::string& gameDirectory, const std::string& outputSubdirectory,
                         const ConvertedMaps& maps) {
  RunWarnings warnings;
  CheckInput(maps.Base, "TGA file", warnings);
  for (const std::string& map : {maps.Normal, maps.Glow, maps.Specular}) {
    if (!map.empty()) CheckInput(map, "TGA file", warnings);
  }
  if (!CheckGameDirectory(gameDirectory, warnings)) return warnings;
  // "\materialsrc\models\props" is compiled into "/materials/models/props".
  constexpr std::string_view Source = "materialsrc";
  std::string folder = outputSubdirectory;
  std::replace(folder.begin(), folder.end(), '\\', '/');
  if (const size_t at = folder.find(Source); at != std::string::npos) folder.replace(at, Source.size(), "materials");
  CheckOutputFolder(gameDirectory + folder, warnings);
  return warnings;
}

RunWarnings CheckVtf2tgaRun(const std::string& input, const std::string& tgaPath) {
  RunWarnings warnings;
  CheckInput(input, "VTF file", warnings);
  std::string folder(core::DirectoryWithSeparator(tgaPath));
  if (folder.empty()) folder = ".";
  std::error_code error;
  if (!fs::is_directory(core::NativePath(folder), error)) {
    warnings.push_back("the output folder " + folder + " does not exist");
  } else {
    CheckOutputFolder(folder, warnings);
  }
  return warnings;
}

}  // namespace tarnwick::tools

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/report.h"
#include "tools/tool_run.h"
#include "tools/vtex_command.h"

namespace tarnwick::tools {

/// What the Material Compile page holds: one value for each of its controls.
struct MaterialCompile {
  std::vector<std::string> Images;
  std::string Directory;  // compiled material directory, relative to the game directory
  bool ModelPath = true;  // whether "models" goes in front of the directory
  std::string Shader = "VertexLitGeneric";
  bool Translucent = false;
  bool HasNormalMap = false;
  std::string NormalMap;
  bool HasGlowMap = false;
  std::string GlowMap;
  bool UseSelfIllumTexture = false;
  bool EnvMap = false;
  bool MaskInBaseAlpha = false;
  bool MaskInNormalAlpha = false;
  bool MaskInIllumAlpha = false;
  std::string EnvMapContrast;
  std::string EnvMapSaturation;
  std::string EnvMapTint;
  std::string SpecularMap;
};

/// The conversion to TGA, which the caller has; the image `alpha`, where there is one (its name may be empty), becomes
/// the alpha channel. Gives the path of the TGA file, empty on failure, and appends its progress to `log`; failures are
/// its own to tell.
using ImageToTga = std::function<std::string(const std::string& source, const std::optional<std::string>& alpha,
                                             const std::string& directory, std::string& log)>;

/// What became of one image.
struct MaterialResult {
  std::string Image;
  ConvertedMaps Maps;
  std::string Log;  // what the status window shows: the conversions' lines, then the run's text and notes
  bool ToolFound = false;
  FinishedRun Run;
};

/// What a compile needs of its caller. All but the report and the conversion may be empty.
struct MaterialCompileCalls {
  core::Report& Report;
  ImageToTga ConvertToTga = {};
  ToolRunOptions Run = {};
  /// Called before the tool starts, with its command line.
  std::function<void(const std::string& commandLine)> OnToolStart = {};
  /// Gets each warning of the checks before the run, and gives the line of the log for it.
  std::function<std::string(const std::string& warning)> OnWarning = {};
};

/// The part of the destination that lies behind the game directory.
std::string OutputSubdirectory(const MaterialCompile& job);

/// Converts and runs vtex for image number `index` of the job. A missing tool is told in a box, and the conversions
/// stand. After a stop, or where the image could not be converted, no tool starts.
MaterialResult RunVtex(const MaterialCompile& job, size_t index, const std::string& sdkDirectory,
                       const std::string& gameDirectory, const MaterialCompileCalls& calls);

}  // namespace tarnwick::tools

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/report.h"
#include "tools/page_log.h"
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

/// What a compile needs of its caller. `Report` and `Log` are required; the others may be empty.
struct MaterialCompileCalls {
  core::Report& Report;
  PageLog& Log;
  /// The directories, asked for anew before each image.
  std::function<std::string()> SdkDirectory;
  std::function<std::string()> GameDirectory;
  ImageToTga ConvertToTga;
  ToolRunOptions Run;
  /// Asks a question in a warning box with the buttons OK and Cancel; true for OK. Without it the answer is OK.
  std::function<bool(const std::string& text, const std::string& caption)> Confirm;
  /// Called before each image's conversions, with its number from 0 and how many there are.
  std::function<void(size_t index, size_t count)> OnImage;
  /// Called before the tool starts, with the log of the conversions and the command line, each on its own line.
  std::function<void(const std::string& text)> OnToolStart;
  /// Called when an image is done.
  std::function<void(const MaterialResult& result)> OnResult;
};

/// The part of the destination that lies behind the game directory.
std::string OutputSubdirectory(const MaterialCompile& job);

/// Converts and runs vtex for image number `index` of the job. A missing tool is told in a box, and the conversions
/// stand.
MaterialResult RunVtex(const MaterialCompile& job, size_t index, const MaterialCompileCalls& calls);

/// Compiles all images, one after the other. Nothing happens if the directory is empty and the user does not want that;
/// then the result is empty. A stop ends the run of the image at hand, and no further one starts.
std::vector<MaterialResult> CompileMaterials(const MaterialCompile& job, const MaterialCompileCalls& calls);

}  // namespace tarnwick::tools

#include "tools/material_compile.h"

#include <utility>

#include "tools/run_checks.h"
#include "tools/sdk_tools.h"

namespace tarnwick::tools {

namespace {

VtexFlags FlagsOf(const MaterialCompile& job) {
  VtexFlags flags = 0;
  const auto add = [&](bool condition, VtexFlags flag) {
    if (condition) flags |= flag;
  };
  add(job.ModelPath, VtexModelPath);
  add(job.Translucent, VtexTranslucent);
  add(job.HasGlowMap, VtexGlow);
  add(job.MaskInBaseAlpha, VtexMaskInBaseAlpha);
  add(job.MaskInNormalAlpha, VtexMaskInNormalAlpha);
  add(job.MaskInIllumAlpha, VtexMaskInIllumAlpha);
  add(job.HasGlowMap && !job.UseSelfIllumTexture, VtexGlowInBaseAlpha);
  return flags;
}

VtexRun RunOf(const MaterialCompile& job, size_t index) {
  VtexRun run;
  run.SourceImage = job.Images[index];
  run.OutputSubdirectory = OutputSubdirectory(job);
  if (job.HasNormalMap) run.NormalMap = job.NormalMap;
  if (job.HasGlowMap) run.GlowMap = job.GlowMap;
  run.SpecularMap = job.SpecularMap;
  run.Flags = FlagsOf(job);
  run.Shader = job.Shader;
  run.EnvMap = job.EnvMap;
  run.EnvMapContrast = job.EnvMapContrast;
  run.EnvMapSaturation = job.EnvMapSaturation;
  run.EnvMapTint = job.EnvMapTint;
  return run;
}

/// The companion maps first, then the image itself, each with the map that its alpha is to take.
ConvertedMaps ConvertImages(const VtexRun& run, const std::string& directory, const ImageToTga& convertToTga,
                            std::string& log) {
  const auto convert = [&](const std::string& source, bool withAlpha, const std::string& alpha) {
    return convertToTga(source, withAlpha ? std::optional(alpha) : std::nullopt, directory, log);
  };
  ConvertedMaps maps;
  if (!run.NormalMap.empty()) maps.Normal = convert(run.NormalMap, run.Has(VtexMaskInNormalAlpha), run.SpecularMap);
  if (!run.GlowMap.empty()) maps.Glow = convert(run.GlowMap, run.Has(VtexMaskInIllumAlpha), run.SpecularMap);
  if (!run.SpecularMap.empty() && !run.Has(VtexMaskInNormalAlpha)) maps.Specular = convert(run.SpecularMap, false, {});
  if (run.Has(VtexGlowInBaseAlpha) && !run.GlowMap.empty()) {
    maps.Base = convert(run.SourceImage, true, run.GlowMap);
  } else {
    const bool maskInAlpha = run.Has(VtexMaskInBaseAlpha) && !run.SpecularMap.empty();
    maps.Base = convert(run.SourceImage, maskInAlpha, run.SpecularMap);
  }
  return maps;
}

}  // namespace

std::string OutputSubdirectory(const MaterialCompile& job) {
  return (job.ModelPath ? "\\materialsrc\\models\\" : "\\materialsrc\\") + job.Directory;
}

MaterialResult RunVtex(const MaterialCompile& job, size_t index, const std::string& sdkDirectory,
                       const std::string& gameDirectory, const MaterialCompileCalls& calls) {
  const VtexRun run = RunOf(job, index);
  MaterialResult result;
  result.Image = run.SourceImage;
  result.Maps = ConvertImages(run, gameDirectory + run.OutputSubdirectory, calls.ConvertToTga, result.Log);
  if (calls.Run.Stop.stop_requested()) return result;
  if (result.Maps.Base.empty()) return result;  // its failure has been told; a tool without a name tells nothing
  result.ToolFound = RequireTool(SdkToolPath(sdkDirectory, Vtex), Vtex, calls.Report);
  if (!result.ToolFound) return result;

  const process::Command command = VtexCommand(sdkDirectory, run, result.Maps);
  for (const std::string& warning : CheckVtexRun(gameDirectory, run.OutputSubdirectory, result.Maps)) {
    if (calls.OnWarning) result.Log += calls.OnWarning(warning);
  }
  if (calls.OnToolStart) calls.OnToolStart(command.Line());
  result.Run = RunTool(ToolRun::Vtex, command, calls.Run);
  result.Log += result.Run.TextWithNotes();
  if (result.Run.Outcome.Failure) ReportFatalSystemError(*result.Run.Outcome.Failure, calls.Report);
  return result;
}

}  // namespace tarnwick::tools

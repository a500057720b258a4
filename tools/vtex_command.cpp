#include "tools/vtex_command.h"

#include "core/paths.h"
#include "tools/sdk_tools.h"

namespace tarnwick::tools {

namespace {

/// The length of "\materialsrc\".
constexpr size_t MaterialSourcePrefix = 13;

/// One switch of the command line: when it is there, and its text around a value.
struct VtexSwitch {
  bool (*Applies)(const VtexRun& run);
  std::string_view Text;
  std::string (*Value)(const VtexRun& run);  // none for a switch whose text is all
  std::string_view Closing;
};

constexpr VtexSwitch Plain(bool (*applies)(const VtexRun& run), std::string_view text) {
  return {applies, text, nullptr, {}};
}

constexpr VtexSwitch Switches[] = {
    Plain([](const VtexRun&) { return true; }, " -nopause"),
    {[](const VtexRun& run) { return !run.Shader.empty(); }, " -shader ", [](const VtexRun& run) { return run.Shader; },
     ""},
    {[](const VtexRun& run) { return !run.NormalMap.empty(); }, " -vmtparam $bumpmap \"",
     [](const VtexRun& run) { return MaterialRelativeName(run.NormalMap, run.OutputSubdirectory); }, "\""},
    Plain([](const VtexRun& run) { return run.Has(VtexModelPath); }, " -vmtparam $model 1"),
    Plain([](const VtexRun& run) { return run.Has(VtexTranslucent); }, " -vmtparam $translucent 1"),
    Plain([](const VtexRun& run) { return run.Has(VtexGlowInBaseAlpha); }, " -vmtparam $selfillum 1"),
    Plain([](const VtexRun& run) { return run.EnvMap; }, " -vmtparam $envmap env_cubemap"),
    Plain([](const VtexRun& run) { return run.EnvMap && run.Has(VtexMaskInBaseAlpha); },
          " -vmtparam $basealphaenvmapmask 1"),
    Plain([](const VtexRun& run) { return run.EnvMap && run.Has(VtexMaskInNormalAlpha); },
          " -vmtparam $normalmapalphaenvmapmask 1"),
    Plain(
        [](const VtexRun& run) { return run.EnvMap && run.Has(VtexMaskInIllumAlpha) && !run.Has(VtexGlowInBaseAlpha); },
        " -vmtparam $selfillum_envmapmask_alpha 1"),
    {[](const VtexRun& run) { return run.EnvMap && !run.EnvMapContrast.empty(); }, " -vmtparam $envmapcontrast \"",
     [](const VtexRun& run) { return run.EnvMapContrast; }, "\""},
    {[](const VtexRun& run) { return run.EnvMap && !run.EnvMapSaturation.empty(); }, " -vmtparam $envmapsaturation \"",
     [](const VtexRun& run) { return run.EnvMapSaturation; }, "\""},
    {[](const VtexRun& run) { return run.EnvMap && !run.EnvMapTint.empty(); }, " -vmtparam $envmaptint ",
     [](const VtexRun& run) { return run.EnvMapTint; }, ""},
    {[](const VtexRun& run) { return run.HasMaskTexture(); }, " -vmtparam $envmapmask \"",
     [](const VtexRun& run) { return MaterialRelativeName(run.SpecularMap, run.OutputSubdirectory); }, "\""},
    {[](const VtexRun& run) { return run.Has(VtexGlow) && run.HasGlowTexture(); }, " -vmtparam $selfillumtexture \"",
     [](const VtexRun& run) { return MaterialRelativeName(run.GlowMap, run.OutputSubdirectory); }, "\""},
};

std::string QuotedPath(const std::string& path) {
  return " \"" + path + "\"";
}

}  // namespace

std::string MaterialRelativeName(std::string_view mapPath, std::string_view outputSubdirectory) {
  const size_t separator = mapPath.find_last_of("/\\");
  // A separator that is the path's first character is not seen.
  const std::string_view name =
      separator == std::string_view::npos || separator == 0 ? mapPath : mapPath.substr(separator + 1);
  std::string relative(outputSubdirectory);
  relative += '/';
  relative += name;
  relative.erase(0, MaterialSourcePrefix);
  const size_t dot = relative.rfind('.');
  const size_t nameStart = relative.size() - core::LastComponent(relative).size();
  if (dot != std::string::npos && dot >= nameStart) relative.erase(dot);
  return relative;
}

std::string VtexCommandLine(std::string_view sdkDirectory, const VtexRun& run, const ConvertedMaps& maps) {
  std::string line = SdkToolPath(sdkDirectory, Vtex);
  for (const VtexSwitch& option : Switches) {
    if (!option.Applies(run)) continue;
    line += option.Text;
    if (option.Value != nullptr) line += option.Value(run);
    line += option.Closing;
  }
  line += QuotedPath(maps.Base);
  if (!maps.Normal.empty()) line += QuotedPath(maps.Normal);
  if (!maps.Glow.empty() && run.HasGlowTexture()) line += QuotedPath(maps.Glow);
  if (!maps.Specular.empty() && run.HasMaskTexture()) line += QuotedPath(maps.Specular);
  return line;
}

}  // namespace tarnwick::tools

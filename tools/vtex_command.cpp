#include "tools/vtex_command.h"

#include "core/paths.h"
#include "tools/sdk_tools.h"

namespace tarnwick::tools {

namespace {

/// The length of "\materialsrc\".
constexpr size_t MaterialSourcePrefix = 13;

/// How the value of a switch goes on the line.
enum class ValueForm {
  Fixed,   // it is a part of the switch's text
  Quoted,  // in quotes
  Typed,   // as the user has typed it: several words may stand there
};

/// One switch of the command line: when it is there, its words, and its value behind them.
struct VtexSwitch {
  bool (*Applies)(const VtexRun& run);
  std::string_view Words;  // parted by single blanks
  ValueForm Form = ValueForm::Fixed;
  std::string (*Value)(const VtexRun& run) = nullptr;
};

/// The name of the map that `Map` of a run holds.
template <std::string VtexRun::*Map>
std::string MapName(const VtexRun& run) {
  return MaterialRelativeName(run.*Map, run.OutputSubdirectory);
}

constexpr VtexSwitch Switches[] = {
    {[](const VtexRun&) { return true; }, "-nopause"},
    {[](const VtexRun& run) { return !run.Shader.empty(); }, "-shader", ValueForm::Typed,
     [](const VtexRun& run) { return run.Shader; }},
    {[](const VtexRun& run) { return !run.NormalMap.empty(); }, "-vmtparam $bumpmap", ValueForm::Quoted,
     MapName<&VtexRun::NormalMap>},
    {[](const VtexRun& run) { return run.Has(VtexModelPath); }, "-vmtparam $model 1"},
    {[](const VtexRun& run) { return run.Has(VtexTranslucent); }, "-vmtparam $translucent 1"},
    {[](const VtexRun& run) { return run.Has(VtexGlowInBaseAlpha); }, "-vmtparam $selfillum 1"},
    {[](const VtexRun& run) { return run.EnvMap; }, "-vmtparam $envmap env_cubemap"},
    {[](const VtexRun& run) { return run.EnvMap && run.Has(VtexMaskInBaseAlpha); }, "-vmtparam $basealphaenvmapmask 1"},
    {[](const VtexRun& run) { return run.EnvMap && run.Has(VtexMaskInNormalAlpha); },
     "-vmtparam $normalmapalphaenvmapmask 1"},
    {[](const VtexRun& run) { return run.EnvMap && run.Has(VtexMaskInIllumAlpha) && !run.Has(VtexGlowInBaseAlpha); },
     "-vmtparam $selfillum_envmapmask_alpha 1"},
    {[](const VtexRun& run) { return run.EnvMap && !run.EnvMapContrast.empty(); }, "-vmtparam $envmapcontrast",
     ValueForm::Quoted, [](const VtexRun& run) { return run.EnvMapContrast; }},
    {[](const VtexRun& run) { return run.EnvMap && !run.EnvMapSaturation.empty(); }, "-vmtparam $envmapsaturation",
     ValueForm::Quoted, [](const VtexRun& run) { return run.EnvMapSaturation; }},
    {[](const VtexRun& run) { return run.EnvMap && !run.EnvMapTint.empty(); }, "-vmtparam $envmaptint",
     ValueForm::Typed, [](const VtexRun& run) { return run.EnvMapTint; }},
    {[](const VtexRun& run) { return run.HasMaskTexture(); }, "-vmtparam $envmapmask", ValueForm::Quoted,
     MapName<&VtexRun::SpecularMap>},
    {[](const VtexRun& run) { return run.Has(VtexGlow) && run.HasGlowTexture(); }, "-vmtparam $selfillumtexture",
     ValueForm::Quoted, MapName<&VtexRun::GlowMap>},
};

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

process::Command VtexCommand(std::string_view sdkDirectory, const VtexRun& run, const ConvertedMaps& maps) {
  process::Command command{SdkToolPath(sdkDirectory, Vtex)};
  for (const VtexSwitch& option : Switches) {
    if (!option.Applies(run)) continue;
    command.Typed(option.Words);
    if (option.Form == ValueForm::Quoted) command.InQuotes(option.Value(run));
    if (option.Form == ValueForm::Typed) command.Typed(option.Value(run));
  }
  command.InQuotes(maps.Base);
  if (!maps.Normal.empty()) command.InQuotes(maps.Normal);
  if (!maps.Glow.empty() && run.HasGlowTexture()) command.InQuotes(maps.Glow);
  if (!maps.Specular.empty() && run.HasMaskTexture()) command.InQuotes(maps.Specular);
  return command;
}

}  // namespace tarnwick::tools

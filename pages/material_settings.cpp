#include "pages/material_settings.h"

#include "core/settings_table.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using tools::MaterialCompile;

namespace {

/// A value of the page and where it is kept.
struct KeptText {
  const core::TextSetting& Setting;
  std::string MaterialCompile::*Value;
};
struct KeptFlag {
  const core::IntSetting& Setting;
  bool MaterialCompile::*Value;
};

constexpr KeptText MainTexts[] = {{setting::MaterialsDir, &MaterialCompile::Directory},
                                  {setting::Shader, &MaterialCompile::Shader}};
constexpr KeptFlag MainFlags[] = {{setting::ModelPath, &MaterialCompile::ModelPath},
                                  {setting::Transparency, &MaterialCompile::Translucent},
                                  {setting::SelfIllum, &MaterialCompile::HasGlowMap},
                                  {setting::SelfIllumBaseAlpha, &MaterialCompile::UseSelfIllumTexture},
                                  {setting::HasNormal, &MaterialCompile::HasNormalMap}};
constexpr KeptText Maps[] = {{setting::NormalMap, &MaterialCompile::NormalMap},
                             {setting::GlowMap, &MaterialCompile::GlowMap}};
constexpr const core::TextSetting* Images[] = {&setting::Material0, &setting::Material1, &setting::Material2,
                                               &setting::Material3};
constexpr KeptFlag EnvmapFlags[] = {{setting::EnvMap, &MaterialCompile::EnvMap},
                                    {setting::EnvMapNormalMask, &MaterialCompile::MaskInNormalAlpha},
                                    {setting::EnvMapIllumMask, &MaterialCompile::MaskInIllumAlpha},
                                    {setting::EnvMapBaseMask, &MaterialCompile::MaskInBaseAlpha}};
constexpr KeptText EnvmapTexts[] = {{setting::EnvmapContrast, &MaterialCompile::EnvMapContrast},
                                    {setting::EnvmapTint, &MaterialCompile::EnvMapTint},
                                    {setting::EnvmapSaturation, &MaterialCompile::EnvMapSaturation},
                                    {setting::EnvmapSpecularMap, &MaterialCompile::SpecularMap}};

}  // namespace

MaterialCompile ReadMaterialSettings(const core::AppSettings& settings) {
  MaterialCompile values;
  const auto readTexts = [&](const auto& table) {
    for (const KeptText& kept : table) values.*kept.Value = kept.Setting.Read(settings);
  };
  const auto readFlags = [&](const auto& table) {
    for (const KeptFlag& kept : table) values.*kept.Value = kept.Setting.Read(settings) != 0;
  };
  readTexts(MainTexts);
  readFlags(MainFlags);
  readTexts(Maps);
  for (const core::TextSetting* image : Images) {
    std::string path = image->Read(settings);
    if (!path.empty()) values.Images.push_back(std::move(path));
  }
  readFlags(EnvmapFlags);
  readTexts(EnvmapTexts);
  return values;
}

void WriteMaterialSettings(core::AppSettings& settings, const MaterialCompile& values) {
  const auto writeTexts = [&](const auto& table) {
    for (const KeptText& kept : table) kept.Setting.Write(settings, values.*kept.Value);
  };
  const auto writeFlags = [&](const auto& table) {
    for (const KeptFlag& kept : table) kept.Setting.Write(settings, values.*kept.Value ? 1 : 0);
  };
  writeTexts(MainTexts);
  writeFlags(MainFlags);
  writeTexts(Maps);
  for (size_t i = 0; i < std::size(Images); ++i) {
    Images[i]->Write(settings, i < values.Images.size() ? values.Images[i] : std::string());
  }
  writeFlags(EnvmapFlags);
  writeTexts(EnvmapTexts);
}

}  // namespace tarnwick::pages

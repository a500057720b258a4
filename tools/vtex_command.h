#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "process/command.h"

namespace tarnwick::tools {

/// What a material is compiled with, as bits of `VtexFlags`.
using VtexFlags = uint32_t;
inline constexpr VtexFlags VtexTranslucent = 1;
inline constexpr VtexFlags VtexGlow = 4;
inline constexpr VtexFlags VtexModelPath = 0x20;
inline constexpr VtexFlags VtexMaskInBaseAlpha = 0x40;
inline constexpr VtexFlags VtexMaskInNormalAlpha = 0x80;
inline constexpr VtexFlags VtexMaskInIllumAlpha = 0x100;
inline constexpr VtexFlags VtexGlowInBaseAlpha = 0x200;

/// One run of vtex before its images are converted. Maps are the user's own files, empty when absent.
struct VtexRun {
  std::string SourceImage;
  std::string OutputSubdirectory;  // "\materialsrc\models\props"; joined directly to the game directory
  std::string NormalMap;
  std::string SpecularMap;
  std::string GlowMap;
  VtexFlags Flags = 0;
  std::string Shader;
  bool EnvMap = false;
  std::string EnvMapContrast;
  std::string EnvMapSaturation;
  std::string EnvMapTint;

  bool Has(VtexFlags flags) const { return (Flags & flags) != 0; }
  /// Whether the specular map stands in a texture of its own, not in the alpha of another.
  bool HasMaskTexture() const {
    return !SpecularMap.empty() && !Has(VtexMaskInNormalAlpha | VtexMaskInIllumAlpha | VtexMaskInBaseAlpha);
  }
  /// Whether the glow map stands in a texture of its own.
  bool HasGlowTexture() const { return !GlowMap.empty() && !Has(VtexGlowInBaseAlpha); }
};

/// The TGA files that the images of a run became; empty where there is none.
struct ConvertedMaps {
  std::string Base;
  std::string Normal;
  std::string Glow;
  std::string Specular;
};

/// The name by which a material refers to the texture of the map at `mapPath`: its file name without ending in the
/// output subdirectory, less the 13 characters of "\materialsrc\". Separators stay as they came. A map without an
/// ending keeps its whole name.
///
///     MaterialRelativeName("C:\\art\\brick_n.tga", "\\materialsrc\\models\\props")   // models\props/brick_n
std::string MaterialRelativeName(std::string_view mapPath, std::string_view outputSubdirectory);

/// The call of vtex: the tool, the switches of the material, the TGA files.
process::Command VtexCommand(std::string_view sdkDirectory, const VtexRun& run, const ConvertedMaps& maps);

}  // namespace tarnwick::tools

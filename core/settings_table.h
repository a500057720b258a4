#pragma once

#include <string>
#include <string_view>

#include "core/app_settings.h"

namespace tarnwick::core {

/// A text value of the settings: where it lies and what a reader gets while it was never written.
struct TextSetting {
  std::string_view Section;
  std::string_view Name;
  std::string_view Default = {};

  std::string Read(const AppSettings& settings) const { return settings.GetString(Section, Name, Default); }
  void Write(AppSettings& settings, std::string_view text) const { settings.WriteString(Section, Name, text); }
};

/// A whole number of the settings.
struct IntSetting {
  std::string_view Section;
  std::string_view Name;
  int32_t Default = 0;

  int32_t Read(const AppSettings& settings) const { return settings.GetInt(Section, Name, Default); }
  void Write(AppSettings& settings, int32_t value) const { settings.WriteInt(Section, Name, value); }
};

/// Every value that the program keeps. A page reads and writes through these names only:
///
///     const std::string directory = setting::GameDirectory.Read(settings);
namespace setting {

inline constexpr TextSetting SdkDirectory{MainSection, "SDKDirectory"};
inline constexpr TextSetting GameDirectory{MainSection, "GameDirectory"};
inline constexpr TextSetting WineProgram{MainSection, "Wine Program"};  // runs Windows programs; empty: looked for
inline constexpr IntSetting UncommonImageFormats{MainSection, "Uncommon Image Formats", 1};  // 0: read fewer
inline constexpr IntSetting TabSelect{MainSection, "TabSelect"};
inline constexpr IntSetting CompileMode{MainSection, "Compile Mode"};

// Options of every model.
inline constexpr TextSetting Scale{MainSection, "Scale", "1.0"};
inline constexpr TextSetting Mass{MainSection, "Mass", "100.0"};
inline constexpr TextSetting SurfaceProp{MainSection, "SurfaceProp", "metal"};
inline constexpr TextSetting PropPhysicsType{MainSection, "PropPhysics Type", "metal.small"};
inline constexpr TextSetting AdditionalQc{MainSection, "Additional QC"};
inline constexpr IntSetting StudioMdlOptions{MainSection, "StudioMDLOptions"};  // a bit for each switch
inline constexpr IntSetting ModelPath{MainSection, "Model Path", 1};            // 1: below materials\models

// The model project.
inline constexpr TextSetting ConfigFile{MainSection, "Config File"};
inline constexpr TextSetting ModelFile{MainSection, "Model File"};
inline constexpr TextSetting ReferenceSmd{MainSection, "Reference SMD"};
inline constexpr TextSetting CollisionSmd{MainSection, "Collision SMD"};
inline constexpr IntSetting AnimSmdCheck{MainSection, "Anim SMD Check"};
inline constexpr IntSetting PhySmdCheck{MainSection, "Phy SMD Check"};
inline constexpr IntSetting PropType{MainSection, "Prop Type"};
inline constexpr TextSetting QcFile{MainSection, "QC File"};
inline constexpr IntSetting ModelOptionsTab{MainSection, "Model Options Tab"};  // of the dialog of that name

// Export of textures.
inline constexpr TextSetting VtfExportFile{MainSection, "VTFExportFile"};
inline constexpr TextSetting TgaExportFile{MainSection, "TGAExportFile"};

// Materials.
inline constexpr TextSetting MaterialsDir{MainSection, "Materials DIR"};
inline constexpr TextSetting Shader{MainSection, "Shader", "VertexLitGeneric"};
inline constexpr IntSetting Transparency{MainSection, "Transparency"};
inline constexpr IntSetting SelfIllum{MainSection, "SelfIllum"};
inline constexpr IntSetting SelfIllumBaseAlpha{MainSection, "SelfIllumBaseAlpha"};
inline constexpr IntSetting HasNormal{MainSection, "HasNormal"};
inline constexpr TextSetting NormalMap{MainSection, "Normal Map"};
inline constexpr TextSetting GlowMap{MainSection, "Glow Map"};
inline constexpr TextSetting Material0{MainSection, "Material0"};
inline constexpr TextSetting Material1{MainSection, "Material1"};
inline constexpr TextSetting Material2{MainSection, "Material2"};
inline constexpr TextSetting Material3{MainSection, "Material3"};
inline constexpr IntSetting EnvMap{MainSection, "EnvMap"};
inline constexpr IntSetting EnvMapNormalMask{MainSection, "EnvMapNormalMask"};
inline constexpr IntSetting EnvMapIllumMask{MainSection, "EnvMapIllumMask"};
inline constexpr IntSetting EnvMapBaseMask{MainSection, "EnvMapBaseMask"};
inline constexpr TextSetting EnvmapContrast{MainSection, "Envmap Contrast"};
inline constexpr TextSetting EnvmapTint{MainSection, "Envmap Tint"};
inline constexpr TextSetting EnvmapSaturation{MainSection, "Envmap Saturation"};
inline constexpr TextSetting EnvmapSpecularMap{MainSection, "Envmap SpecularMap"};

// The window.
inline constexpr TextSetting WindowGeometry{MainSection, "Window Geometry"};  // position and size, base 64

// The decompiler. While OutputDirectory was never written its readers use the user's documents folder.
inline constexpr TextSetting OutputDirectory{DecompilerSection, "OutputDirectory"};
inline constexpr TextSetting LastMdlFile{DecompilerSection, "LastMDLFile"};
inline constexpr IntSetting CheckBoxSettings{DecompilerSection, "CheckBoxSettings", 1};  // 2 and 4: the two boxes
inline constexpr IntSetting ReadyToCompile{DecompilerSection, "ReadyToCompile", 1};
inline constexpr IntSetting OwnModelFolders{DecompilerSection, "Own Model Folders", 1};
inline constexpr TextSetting RecentModels{DecompilerSection, "Recent Models"};            // one a line, newest first
inline constexpr TextSetting RecentDirectories{DecompilerSection, "Recent Directories"};  // likewise

/// All text values, in the order of the sections above.
inline constexpr const TextSetting* TextValues[] = {
    &SdkDirectory,
    &GameDirectory,
    &WineProgram,
    &Scale,
    &Mass,
    &SurfaceProp,
    &PropPhysicsType,
    &AdditionalQc,
    &ConfigFile,
    &ModelFile,
    &ReferenceSmd,
    &CollisionSmd,
    &QcFile,
    &VtfExportFile,
    &TgaExportFile,
    &MaterialsDir,
    &Shader,
    &NormalMap,
    &GlowMap,
    &Material0,
    &Material1,
    &Material2,
    &Material3,
    &EnvmapContrast,
    &EnvmapTint,
    &EnvmapSaturation,
    &EnvmapSpecularMap,
    &WindowGeometry,
    &OutputDirectory,
    &LastMdlFile,
    &RecentModels,
    &RecentDirectories,
};

/// All numbers, likewise.
inline constexpr const IntSetting* IntValues[] = {
    &UncommonImageFormats,
    &TabSelect,
    &CompileMode,
    &StudioMdlOptions,
    &ModelPath,
    &AnimSmdCheck,
    &PhySmdCheck,
    &PropType,
    &ModelOptionsTab,
    &Transparency,
    &SelfIllum,
    &SelfIllumBaseAlpha,
    &HasNormal,
    &EnvMap,
    &EnvMapNormalMask,
    &EnvMapIllumMask,
    &EnvMapBaseMask,
    &CheckBoxSettings,
    &ReadyToCompile,
    &OwnModelFolders,
};

}  // namespace setting

}  // namespace tarnwick::core

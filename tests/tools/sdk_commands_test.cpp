#include <gtest/gtest.h>

#include <algorithm>

#include "core/paths.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"
#include "tools/hlmv_command.h"
#include "tools/sdk_tools.h"
#include "tools/studiomdl_command.h"
#include "tools/vtex_command.h"

namespace tarnwick::tools {
namespace {

TEST(StudiomdlCommand, PutsSlashesIntoTheToolsPathOnlyAndSwitchesInTheirOrder) {
  EXPECT_EQ(StudiomdlCommand(R"(C:\sdk\bin)", R"(C:\my game)", R"(C:\qc\box.qc)").Line(),
            R"(C:/sdk/bin/studiomdl.exe -game "C:\my game" "C:\qc\box.qc")");
  EXPECT_EQ(
      StudiomdlCommand("s", "g", "q", 0xFFFFFFFF).Line(),
      "s/studiomdl.exe -game \"g\" \"q\" -fullcollide -checklengths -printbones -perf -printgraph -definebone -f -h");
  EXPECT_EQ(StudiomdlCommand("s", "g", "q", 0x040 | 0x080 | 0x100).Line(), "s/studiomdl.exe -game \"g\" \"q\" -f");
}

TEST(HlmvCommand, NamesTheModelBelowTheGamesModels) {
  const process::Command command = HlmvCommand(R"(C:\sdk)", R"(C:\game)", R"(props\box.mdl)");
  const std::string program = std::string(R"(C:\sdk)") + core::PathSeparator + "hlmv.exe";
  EXPECT_EQ(command.Program, program);
  EXPECT_EQ(command.Line(), program + R"( -game "C:\game" "C:\game/models/props\box.mdl")");
  EXPECT_EQ(HlmvErrorText(command), "Error starting " + program);
  EXPECT_EQ(ModelFileOf(R"(C:\Game\)", R"(c:/game/models/props\box.mdl)"), R"(props\box.mdl)");
  EXPECT_EQ(ModelFileOf("/game", "/other/models/box.mdl"), "/other/models/box.mdl");
}

TEST(HlmvCommand, FindsAFileOfTheModelsFolderByAnyPath) {
  tests::ScratchFolder folder;
  tests::WriteText(folder.Path("game/models/props/box.mdl"), "");
  tests::WriteText(folder.Path("game/other.mdl"), "");
  const std::string byDetour = folder.Path("game/../game/models/./props/box.mdl");
  EXPECT_EQ(core::NativePath(ModelFileOf(folder.Path("game/"), byDetour)), core::NativePath("props/box.mdl"));
  EXPECT_EQ(ModelFileOf(folder.Path("game"), folder.Path("game/other.mdl")), folder.Path("game/other.mdl"));
}

TEST(SdkTools, AMissingToolIsToldWithItsPath) {
  tests::RecordingReport report;
  EXPECT_FALSE(RequireTool(SdkToolPath(R"(\nowhere\sdk)", Vtf2tga), Vtf2tga, report));
  const tests::RecordedBox expected{
      core::BoxIcon::Stop,
      "Command /nowhere/sdk/vtf2tga.exe not found.\r\nPlease set correct HL2 SDK path using configure button",
      "VTF2TGA ERROR"};
  EXPECT_EQ(report.Boxes, std::vector{expected});
}

TEST(SdkTools, EachToolIsTheSdksWhereItHasOneAndElseOurs) {
  if (!BundledSdkDirectory()) GTEST_SKIP() << "the program's own tools are not built";
  const std::string own = *BundledSdkDirectory();
  tests::ScratchFolder sdk;
  tests::WriteText(sdk.Path("vtex.exe"), "");
  EXPECT_EQ(ToolInUse(sdk.Path(), Vtex).Directory, sdk.Path());
  EXPECT_FALSE(ToolInUse(sdk.Path(), Vtex).StandsIn);
  for (const std::string& directory : {sdk.Path(), std::string("/no/sdk"), std::string()}) {
    EXPECT_EQ(ToolInUse(directory, Vtf2tga).Directory, own);
    EXPECT_TRUE(ToolInUse(directory, Vtf2tga).StandsIn);
  }
  EXPECT_FALSE(ToolInUse(own, Vtex).StandsIn) << "it is what was asked for";
  EXPECT_NE(ToolsInUseText(own + "/").find("vtex: our own"), std::string::npos);
  EXPECT_TRUE(HoldsSdkTools(sdk.Path()));
  EXPECT_FALSE(HoldsSdkTools(own));
  EXPECT_NE(ToolsInUseText(sdk.Path()).find("vtex: the SDK's, vtf2tga: our own"), std::string::npos);
  constexpr SdkTool Nobody{"nobody", ""};
  EXPECT_EQ(ToolInUse(sdk.Path(), Nobody).Directory, sdk.Path());
  EXPECT_FALSE(ToolInUse(sdk.Path(), Nobody).StandsIn);
}

TEST(VtexCommand, NamesAMapAsTheMaterialRefersToIt) {
  const struct {
    const char *Map, *Subdirectory, *Name;
  } cases[] = {
      {R"(C:\art\brick_n.tga)", R"(\materialsrc\models\props)", "models\\props/brick_n"},
      {R"(C:\art\brick_n.tga)", R"(\materialsrc\models\)", "models\\/brick_n"},
      {"/art/Brick.n.png", R"(\materialsrc\walls)", "walls/Brick.n"},
      {"/brick.tga", R"(\materialsrc\walls)", "walls//brick"},  // a separator that comes first is not seen
      {"/art/brick", R"(\materialsrc\v1.5)", "v1.5/brick"},     // no ending: the whole name
      {"", R"(\materialsrc\)", "/"},
  };
  for (const auto& c : cases) EXPECT_EQ(MaterialRelativeName(c.Map, c.Subdirectory), c.Name) << c.Map;
}

/// A run of `C:\art\brick.tga` into G:'s models\props.
VtexRun BrickRun(VtexFlags flags) {
  VtexRun run;
  run.SourceImage = R"(C:\art\brick.tga)";
  run.OutputSubdirectory = R"(\materialsrc\models\props)";
  run.Shader = "VertexLitGeneric";
  run.Flags = VtexModelPath | flags;
  return run;
}

/// The line behind the tool's path, with maps that were converted to "base", "normal", "glow", "spec".
std::string BrickLine(const VtexRun& run) {
  ConvertedMaps maps{"base", "", "", ""};
  if (!run.NormalMap.empty()) maps.Normal = "normal";
  if (!run.GlowMap.empty()) maps.Glow = "glow";
  if (!run.SpecularMap.empty()) maps.Specular = "spec";
  const std::string line = VtexCommand(R"(C:\sdk)", run, maps).Line();
  const std::string start = "C:/sdk/vtex.exe -nopause";
  EXPECT_EQ(line.substr(0, start.size()), start);
  return line.substr(start.size());
}

TEST(VtexCommand, HoldsTheSwitchesOfTheMaterialInTheirOrder) {
  EXPECT_EQ(BrickLine(BrickRun(0)), R"( -shader VertexLitGeneric -vmtparam $model 1 "base")");

  VtexRun masked = BrickRun(VtexMaskInNormalAlpha);
  masked.NormalMap = R"(C:\art\brick_n.tga)";
  masked.EnvMap = true;
  EXPECT_EQ(BrickLine(masked),
            R"( -shader VertexLitGeneric -vmtparam $bumpmap "models\props/brick_n" -vmtparam $model 1)"
            R"( -vmtparam $envmap env_cubemap -vmtparam $normalmapalphaenvmapmask 1 "base" "normal")");

  VtexRun full = BrickRun(VtexTranslucent | VtexGlow);
  full.Shader.clear();
  full.NormalMap = "n.png";
  full.GlowMap = "g.png";
  full.SpecularMap = "s.png";
  full.EnvMap = true;
  full.EnvMapContrast = ".5";
  full.EnvMapSaturation = "1";
  full.EnvMapTint = "1 .5 .25";
  EXPECT_EQ(BrickLine(full),
            R"( -vmtparam $bumpmap "models\props/n" -vmtparam $model 1 -vmtparam $translucent 1)"
            R"( -vmtparam $envmap env_cubemap -vmtparam $envmapcontrast ".5" -vmtparam $envmapsaturation "1")"
            R"( -vmtparam $envmaptint 1 .5 .25 -vmtparam $envmapmask "models\props/s")"
            R"( -vmtparam $selfillumtexture "models\props/g" "base" "normal" "glow" "spec")");
}

TEST(VtexCommand, MasksInAnAlphaChannelTakeTheirTexturesOffTheLine) {
  VtexRun run = BrickRun(VtexGlow | VtexGlowInBaseAlpha | VtexMaskInBaseAlpha | VtexMaskInIllumAlpha);
  run.Shader.clear();
  run.GlowMap = "g.png";
  run.SpecularMap = "s.png";
  run.EnvMap = true;
  // The illum mask's switch is left out too, since the glow itself is in the base's alpha.
  EXPECT_EQ(BrickLine(run), R"( -vmtparam $model 1 -vmtparam $selfillum 1 -vmtparam $envmap env_cubemap)"
                            R"( -vmtparam $basealphaenvmapmask 1 "base")");

  VtexRun withoutEnvMap = BrickRun(0);
  withoutEnvMap.SpecularMap = "s.png";
  withoutEnvMap.EnvMapContrast = "1";
  EXPECT_EQ(BrickLine(withoutEnvMap),
            R"( -shader VertexLitGeneric -vmtparam $model 1 -vmtparam $envmapmask "models\props/s" "base" "spec")");
}

}  // namespace
}  // namespace tarnwick::tools

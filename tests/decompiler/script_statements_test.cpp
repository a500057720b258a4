#include "decompiler/plain/statements.h"

#include <gmock/gmock.h>

#include <cmath>

#include "decompiled_model.h"
#include "model/script_records.h"
#include "support/told_texts.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using testing::ElementsAre;
using testing::HasSubstr;

/// A model without meshes, with one animation and one sequence.
ModelBuilder Bare() {
  ModelBuilder model;
  model.BodyParts.clear();
  model.Animations = {AnimationDescription{}};
  model.Sequences = {SequenceDescription{}};
  return model;
}

TEST(ScriptStatements, StandInTheirOrderToTheByte) {
  ModelBuilder model = Bare();
  model.Bones = {{.Name = "root"}, {.Name = "knee", .Parent = 0}, {.Name = "foot", .Parent = 1}};
  model.PoseParameters = {{"move_x", -1, 1, 0}, {"move_yaw", -180, 180, 360}};
  model.MaterialDirectories = {"models/a\\", ""};
  model.HitboxSets = {{"default", {{2, 7, {-1, -2, -3}, {1, 2.0005f, 3}}}}, {"empty", {}}};
  model.Attachments = {{"muzzle", 1, {{0, -1, 0, 1.5f, 1, 0, 0, -2, 0, 0, 1, 3}}}};
  model.IncludedModels = {"models/m_anm.mdl", "short"};
  model.SurfaceProp = "";
  model.KeyValues = "mdlkeyvalue\n{\nprop_data { }\n}\n";
  model.EyePosition = {0, 0, 65.5f};
  model.IllumPosition = {-0.0f, 0, 0};
  model.IkChains = {{"rfoot", {{0, {0.5f, 0, 1}}, {1, {}}, {2, {}}}}, {"two", {{0, {}}, {1, {}}}}};
  const DecompiledModel run(model);
  EXPECT_EQ(run.Script(),
            "$poseparameter move_x -1.00 1.00\n"
            "$poseparameter move_yaw -180.00 180.00 360.00\n"
            "$cdmaterials \"models/a\\\"\n"
            "$cdmaterials \"\"\n"
            "$hboxset \"default\"\n"
            "$hbox 7 \"foot\" -1.000  -2.000  -3.000  1.000  2.000  3.000\n"
            "$hboxset \"empty\"\n"
            "$attachment \"muzzle\" \"knee\" 1.50 -2.00 3.00 rotate -0.00 90.00 0.00\n"
            "$includemodel \"m_anm.mdl\"\n"
            "$includemodel \"\"\n"
            "$surfaceprop \"\"\n"
            "$keyvalues  { prop_data { } } \n"
            "$eyeposition 0.000 0.000 65.500\n"
            "$sequence idle \"idle\" fps 30.00\n"
            "$ikchain rfoot foot knee  0.500 0.000 1.000\n");
  EXPECT_TRUE(run.Result.Succeeded());
}

TEST(ScriptStatements, SkinFamiliesHaveTwoShapes) {
  ModelBuilder model = Bare();
  model.Textures = {"a", "b", "c", "d", "e"};
  model.MaterialDirectories = {};
  model.SkinFamilies = {{0, 1}, {2, 1}};
  EXPECT_EQ(DecompiledModel(model).Script("$texturegroup"),
            "$texturegroup skinfamilies\n{\n\t{ \"a.vmt\" }\n\t{ \"c.vmt\" }\n}\n");
  // Five references in two families: three entries each.
  model.SkinFamilies = {{0, 1, 2, 3, 4}, {4, 3, 2, 1, 0}};
  EXPECT_EQ(DecompiledModel(model).Script("$texturegroup"),
            "$texturegroup skinfamilies\n{\n\t{\"a.vmt\"\n \"b.vmt\"\n \"c.vmt\"\n}\n "
            "\t{\"e.vmt\"\n \"d.vmt\"\n \"c.vmt\"\n}\n }\n");
  model.SkinFamilies = {{0, 1, 2, 3, 4}};
  EXPECT_EQ(DecompiledModel(model).Script("$texturegroup"), "");
}

TEST(ScriptStatements, TexturesThatNoMeshShowsStandInTheirTable) {
  ModelBuilder model;
  model.Textures = {"skin", "spare", "gone"};
  model.SkinFamilies = {{0, 1}};
  const DecompiledModel job(model, DecompileOptionReadyToCompile);
  EXPECT_THAT(job.Script(), HasSubstr("$texturegroup \"skinfamilies\" {\n  { \"spare\" }\n}\n"));
  EXPECT_THAT(job.Result.Lost, testing::ElementsAre(LostKind{"textures that no mesh and no skin shows", 1}));
  model.Textures = {"skin"};
  model.SkinFamilies = {{0}};
  EXPECT_THAT(DecompiledModel(model, DecompileOptionReadyToCompile).Script(), testing::Not(HasSubstr("$texturegroup")));
}

TEST(ScriptStatements, EndMaterialFoldersAsACompileDoes) {
  ModelBuilder model = Bare();
  model.MaterialDirectories = {"models\\a", "", "models/b/"};
  const DecompiledModel job(model, DecompileOptionReadyToCompile);
  EXPECT_THAT(job.Script(), HasSubstr("$cdmaterials \"models/a/\"\n$cdmaterials \"\"\n$cdmaterials \"models/b/\"\n"));
  EXPECT_THAT(job.Result.Lost, testing::ElementsAre(LostKind{"material folders without a slash at their end", 1}));
}

TEST(ScriptStatements, AreCleanedOfWhatBreaksAScriptToCompile) {
  ModelBuilder model = Bare();
  model.MaterialDirectories = {"models\\a\"b\r\n\\"};
  model.KeyValues = "mdlkeyvalue } { a { b \"}\" } \"c";
  model.IkChains = {{"rfoot", {{0, {std::nanf(""), 0, 1}}, {0, {}}, {0, {}}}}};
  const DecompiledModel run(model, DecompileOptionReadyToCompile);
  EXPECT_THAT(run.Script(), HasSubstr("$cdmaterials \"models/a'b  /\"\n"));
  EXPECT_THAT(run.Script(), HasSubstr("$keyvalues {\n  \"a\" {\n    \"b\" \"}\"\n  }\n  \"c\" \"\"\n}\n"));
  EXPECT_THAT(run.Script(), HasSubstr("knee 0 0 1\n"));
  EXPECT_THAT(TextsOf(run.Result, core::Severity::Warning),
              ElementsAre(HasSubstr("control characters"), HasSubstr("not finite"), HasSubstr("do not balance"),
                          HasSubstr("key values of the model are damaged")));
  EXPECT_THAT(TextsOf(DecompiledModel(model).Result, core::Severity::Warning), testing::IsEmpty());
}

TEST(ScriptStatements, KeepKeyValuesOfAnyLength) {
  ModelBuilder model = Bare();
  model.KeyValues = "other { " + std::string(10'000, 'x') + "\n}";
  EXPECT_EQ(DecompiledModel(model).Script("other", "$sequence"), "other { " + std::string(10'000, 'x') + " }\n");
}

TEST(ScriptStatements, AModelWithoutSequencesHasThemOnlyReadyToCompile) {
  ModelBuilder model = Bare();
  model.Sequences.clear();
  EXPECT_EQ(DecompiledModel(model).Script(), "");
  EXPECT_EQ(DecompiledModel(model, DecompileOptionReadyToCompile).Script(),
            "$illumposition 0 0 0\n$cdmaterials \"models/props/\"\n"
            "$definebone \"root\" \"\" 0 0 0 0 0 0 0 0 0 0 0 0\n"
            "$texturegroup \"skinfamilies\" {\n  { \"skin\" }\n}\n"
            "$animation \"@idle\" \"idle.smd\" {\n  fps 30\n}\n");
}

TEST(ScriptStatements, ADamagedTableCostsItsStatementsOnly) {
  ModelBuilder model = Bare();
  model.HitboxSets = {HitboxSetDescription{}};
  ModelFiles files = model.Build();
  files.Mdl.Record<StudioHitbox>("hitboxes 0", 0).Bone = 1;
  const DecompiledModel run(files);
  EXPECT_THAT(TextsOf(run.Result, core::Severity::Error), ElementsAre(HasSubstr("names bone 1 of 1")));
  EXPECT_EQ(run.Script("$hboxset"), "$hboxset \"default\"\n");
  EXPECT_EQ(run.Script("$surfaceprop", "-"), "$surfaceprop \"metal\"\n$sequence idle \"idle\" fps 30.00\n");
}

}  // namespace
}  // namespace tarnwick::decompiler

#include <gmock/gmock.h>

#include "decompiled_model.h"

// Sources that the SDK's compiler takes as they are.

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using testing::ElementsAre;
using testing::HasSubstr;

DecompiledModel Ready(std::vector<BodyPartDescription> parts) {
  return DecompiledModel(ModelBuilder{.BodyParts = std::move(parts)}, DecompileOptionReadyToCompile);
}

BodyPartDescription Part(const std::string& modelName) {
  return {.Models = {{.Name = modelName}}};
}

TEST(ReadyToCompile, PutsEveryFileStraightIntoTheOutputDirectoryUnderItsOwnName) {
  const DecompiledModel job = Ready({Part("C:\\Documents and Settings\\led3.smd"), Part("../LED3"), Part("a?b*.smd"),
                                     Part("con.smd"), Part("tail. "), Part("dir/")});
  EXPECT_TRUE(job.Result.Succeeded()) << job.Report.LogText;
  EXPECT_EQ(job.MeshCommands(),
            "$body \"body\" \"led3.smd\"\n$body \"body\" \"LED3_2.smd\"\n$body \"body\" \"a_b_.smd\"\n"
            "$body \"body\" \"_on.smd\"\n$body \"body\" \"tail__.smd\"\n$body \"body\" \"_.smd\"\n");
  EXPECT_THAT(job.Files(),
              ElementsAre("LED3_2.smd", "_.smd", "_on.smd", "a_b_.smd", "led3.smd", "ravelback.qc", "tail__.smd"));
  EXPECT_THAT(job.Result.Lost, ElementsAre(LostKind{"names of meshes that no file can have", 6}));
}

TEST(ReadyToCompile, TypesTheNameThatTheModelHas) {
  const DecompiledModel job = Ready({Part("crate.smd"), Part("lid")});
  EXPECT_EQ(job.MeshCommands(), "$body \"body\" \"crate.smd\"\n$body \"body\" \"lid\"\n");
  EXPECT_THAT(job.Files(), ElementsAre("crate.smd", "lid.smd", "ravelback.qc"));
  EXPECT_THAT(job.Result.Lost, testing::IsEmpty());
}

TEST(ReadyToCompile, GroupsTheModelsOfABodyPart) {
  const DecompiledModel job = Ready(
      {{.Name = "head", .Models = {{.Name = "a.smd"}, {.Name = "", .Meshes = {}}, {.Name = "a.smd"}}}, Part("b.smd")});
  EXPECT_EQ(job.MeshCommands(),
            "$bodygroup \"head\" {\n  studio \"a.smd\"\n  blank\n  studio \"a_2.smd\"\n}\n"
            "$body \"body\" \"b.smd\"\n");
  EXPECT_THAT(job.Files(), ElementsAre("a.smd", "a_2.smd", "b.smd", "ravelback.qc"));
}

TEST(ReadyToCompile, KeepsAFaceWhereNoGroupOffersIt) {
  ModelBuilder model{
      .BodyParts = {{.Name = "head", .Models = {{.Name = "a.smd", .Eyeballs = {{}}}}},
                    {.Name = "hats", .Models = {{.Name = "c.smd"}, {.Name = "d.smd", .Eyeballs = {{}}}}}},
      .FlexDescs = {"lid"},
      .Mouths = {{}}};
  const DecompiledModel job(model, DecompileOptionReadyToCompile);
  EXPECT_THAT(job.Script(), HasSubstr("$model \"head\" \"a.smd\" {\n"));
  EXPECT_THAT(job.Script(), HasSubstr("$bodygroup \"hats\" {\n  studio \"c.smd\"\n  studio \"d.smd\"\n}\n"));
  EXPECT_THAT(job.Result.Lost, testing::Contains(LostKind{"faces of models that a body group offers", 1}));
}

TEST(ReadyToCompile, MergesLodCommandsBehindTheLastBodyPart) {
  const MeshDescription threeLods{.Lods = {Triangles({0, 1, 2}), Triangles({0, 1, 2}), Triangles({0, 1, 2})}};
  const MeshDescription nearOnly{.Lods = {Triangles({0, 1, 2})}};
  const DecompiledModel job =
      Ready({{.Name = "p",
              .Models = {{.Name = "none", .Meshes = {}, .SwitchDistances = {0, 5, 5}},
                         {.Name = "a.smd", .Meshes = {threeLods, nearOnly}, .SwitchDistances = {0, 20.5f, -1}}}},
             {.Models = {{.Name = "near.smd", .Meshes = {nearOnly}, .SwitchDistances = {0, 7, 7}}}},
             {.Models = {{.Name = "A.smd", .Meshes = {threeLods}, .SwitchDistances = {0, 9, 9}}}}});
  EXPECT_EQ(job.MeshCommands(),
            "$bodygroup \"p\" {\n  blank\n  studio \"a.smd\"\n}\n$body \"body\" \"near.smd\"\n"
            "$body \"body\" \"A_2.smd\"\n"
            "$lod 20.5 {\n  replacemodel \"a.smd\" \"lod1_a.smd\"\n  removemodel \"near.smd\"\n"
            "  replacemodel \"A_2.smd\" \"lod1_A_2.smd\"\n}\n"
            "$shadowlod {\n  replacemodel \"a.smd\" \"lod2_a.smd\"\n  removemodel \"near.smd\"\n"
            "  replacemodel \"A_2.smd\" \"lod2_A_2.smd\"\n}\n");
  EXPECT_THAT(job.Files(), ElementsAre("A_2.smd", "a.smd", "lod1_A_2.smd", "lod1_a.smd", "lod2_A_2.smd", "lod2_a.smd",
                                       "near.smd", "ravelback.qc"));
}

}  // namespace
}  // namespace tarnwick::decompiler

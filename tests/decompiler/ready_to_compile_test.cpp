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
            "$model \"body\" \"led3.smd\"\n\n$model \"body\" \"LED3_2.smd\"\n\n$model \"body\" \"a_b_.smd\"\n\n"
            "$model \"body\" \"_on.smd\"\n\n$model \"body\" \"tail__.smd\"\n\n$model \"body\" \"_.smd\"\n\n");
  EXPECT_THAT(job.Files(),
              ElementsAre("LED3_2.smd", "_.smd", "_on.smd", "a_b_.smd", "led3.smd", "ravelback.qc", "tail__.smd"));
}

TEST(ReadyToCompile, GroupsTheModelsOfABodyPart) {
  const DecompiledModel job = Ready(
      {{.Name = "head", .Models = {{.Name = "a.smd"}, {.Name = "none", .Meshes = {}}, {.Name = "a.smd"}}}, Part("b")});
  EXPECT_EQ(job.MeshCommands(),
            "$bodygroup \"head\"\n{\n  studio \"a.smd\"\n  blank\n  studio \"a_2.smd\"\n}\n\n"
            "$model \"body\" \"b.smd\"\n\n");
  EXPECT_THAT(job.Files(), ElementsAre("a.smd", "a_2.smd", "b.smd", "ravelback.qc"));
}

TEST(ReadyToCompile, KeepsModelLinesWhereABodyPartHoldsAFace) {
  ModelBuilder model{.BodyParts = {{.Name = "head", .Models = {{.Name = "a.smd", .Eyeballs = {{}}}, {.Name = "b.smd"}}},
                                   {.Name = "hats", .Models = {{.Name = "c.smd"}, {.Name = "d.smd"}}}},
                     .FlexDescs = {"lid"},
                     .Mouths = {{}}};
  const std::string script = DecompiledModel(model, DecompileOptionReadyToCompile).MeshCommands();
  EXPECT_THAT(script, HasSubstr("$model \"head\" \"a.smd\" {\n"));
  EXPECT_THAT(script, HasSubstr("}\n\n$model \"head\" \"b.smd\"\n\n$bodygroup \"hats\"\n{\n"));
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
            "$bodygroup \"p\"\n{\n  blank\n  studio \"a.smd\"\n}\n\n$model \"body\" \"near.smd\"\n\n"
            "$model \"body\" \"A_2.smd\"\n\n"
            "$lod 20\n {\n  replacemodel \"a\" \"lod1_a\"\n  removemodel \"near\"\n"
            "  replacemodel \"A_2\" \"lod1_A_2\"\n}\n"
            "$shadowlod\n{\n  replacemodel \"a\" \"lod2_a\"\n  removemodel \"near\"\n"
            "  replacemodel \"A_2\" \"lod2_A_2\"\n}\n");
  EXPECT_THAT(job.Files(), ElementsAre("A_2.smd", "a.smd", "lod1_A_2.smd", "lod1_a.smd", "lod2_A_2.smd", "lod2_a.smd",
                                       "near.smd", "ravelback.qc"));
}

}  // namespace
}  // namespace tarnwick::decompiler

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
            "$body \"body\" \"led3.smd\"\n$body \"body\" \"led3.smd\"\n$body \"body\" \"a_b_.smd\"\n"
            "$body \"body\" \"_on.smd\"\n$body \"body\" \"tail__.smd\"\n$body \"body\" \"_.smd\"\n");
  EXPECT_THAT(job.Files(), ElementsAre("_.smd", "_on.smd", "a_b_.smd", "led3.smd", "ravelback.qc", "tail__.smd"));
  EXPECT_THAT(job.Result.Lost, ElementsAre(LostKind{"names of meshes that no file can have", 6}));
}

TEST(ReadyToCompile, TypesTheNameThatTheModelHas) {
  const DecompiledModel job = Ready({Part("crate.smd"), Part("lid"), Part("fan.SMD")});
  EXPECT_EQ(job.MeshCommands(), "$body \"body\" \"crate.smd\"\n$body \"body\" \"lid\"\n$body \"body\" \"fan.SMD\"\n");
  EXPECT_THAT(job.Files(), ElementsAre("crate.smd", "fan.SMD", "lid.smd", "ravelback.qc"));
  EXPECT_THAT(job.Result.Lost, testing::IsEmpty());
}

TEST(ReadyToCompile, GroupsTheModelsOfABodyPart) {
  MeshDescription other;
  other.Vertices[0].Position.x += 1;
  const DecompiledModel job = Ready({{.Name = "head",
                                      .Models = {{.Name = "a.smd"},
                                                 {.Name = "", .Meshes = {}},
                                                 {.Name = "x/A.smd", .Meshes = {other}},
                                                 {.Name = "none", .Meshes = {}}}},
                                     Part("a.smd"),
                                     Part("b.smd")});
  EXPECT_EQ(job.MeshCommands(),
            "$bodygroup \"head\" {\n  studio \"a.smd\"\n  blank\n  studio \"A_2.smd\"\n  studio \"none\"\n}\n"
            "$body \"body\" \"a.smd\"\n$body \"body\" \"b.smd\"\n");
  EXPECT_THAT(job.Files(), ElementsAre("A_2.smd", "a.smd", "b.smd", "none.smd", "ravelback.qc"));
  EXPECT_TRUE(job.File("none.smd").ends_with("triangles\nend\n"));
  EXPECT_THAT(job.Result.Lost, ElementsAre(LostKind{"names of meshes that no file can have", 1}));
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
  EXPECT_THAT(job.Result.Lost, testing::Contains(LostKind{"eyes of models that a body group offers", 1}));
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
            "$bodygroup \"p\" {\n  studio \"none\"\n  studio \"a.smd\"\n}\n$body \"body\" \"near.smd\"\n"
            "$body \"body\" \"A_2.smd\"\n"
            "$lod 20.5 {\n  replacemodel \"a.smd\" \"lod1_a.smd\"\n  removemodel \"near.smd\"\n"
            "  replacemodel \"A_2.smd\" \"lod1_A_2.smd\"\n}\n"
            "$shadowlod {\n  replacemodel \"a.smd\" \"lod2_a.smd\"\n  removemodel \"near.smd\"\n"
            "  replacemodel \"A_2.smd\" \"lod2_A_2.smd\"\n}\n");
  EXPECT_THAT(job.Files(), ElementsAre("A_2.smd", "a.smd", "lod1_A_2.smd", "lod1_a.smd", "lod2_A_2.smd", "lod2_a.smd",
                                       "near.smd", "none.smd", "ravelback.qc"));
}

TEST(ReadyToCompile, TakesTheTrianglesThatWereMadeWithTheModel) {
  const auto read = [](bool matching) {
    ScratchFolder folder;
    ModelFiles files = ModelBuilder{}.Build();
    const std::string model = files.Write(folder.Path(), "cube");
    files.Vtx.Record<VtxHeader>("header").Checksum = 77;
    WriteText(folder.Path("cube.dx80.vtx"), files.Vtx.Bytes());
    if (!matching) WriteText(folder.Path("cube.dx90.vtx"), files.Vtx.Bytes());
    std::filesystem::create_directory(folder.Path("out"));
    RecordingReport report;
    const DecompileJob job{
        .ModelPath = model, .OutputDirectory = folder.Path("out"), .Options = DecompileOptionReadyToCompile};
    const DecompileResult result = DecompileModel(job, report);
    EXPECT_EQ(result.Told(core::Severity::Warning).size(), matching ? 0u : 1u);
    return report.LogText;
  };
  EXPECT_THAT(read(true), testing::AllOf(HasSubstr("cube.dx80.vtx was made with another model"),
                                         HasSubstr("Loaded Vertices "), HasSubstr("cube.dx90.vtx\r\n")));
  EXPECT_THAT(read(false), HasSubstr("cube.dx80.vtx was not made together with"));
}

TEST(ReadyToCompile, SaysWhichBonesALevelReplacesAndThatItDropsTheFace) {
  MeshDescription mesh{.Flexes = {{}}};
  mesh.Vertices[0].Weights = {{1, 0.75f}, {0, 0.25f}};
  mesh.Vertices.push_back(mesh.Vertices[0]);
  mesh.Vertices[3].Weights = {{0, 1}};
  mesh.Lods = {Triangles({0, 1, 2}), Triangles({3, 1, 2})};
  ModelBuilder model{.Bones = {{.Name = "base", .Flags = 0xC00}, {.Name = "root", .Parent = 0, .Flags = 0x400}},
                     .BodyParts = {{.Models = {{.Meshes = {mesh}, .SwitchDistances = {0, 12}}}}},
                     .FlexDescs = {"open"}};
  ModelFiles files = model.Build();
  files.Vtx.Record<VtxStripGroup>("group 0.0.0.0.0").Flags = 7;
  EXPECT_THAT(DecompiledModel(files, DecompileOptionReadyToCompile).Script(),
              HasSubstr("$lod 12 {\n  replacemodel \"cube.smd\" \"lod1_cube.smd\"\n  nofacial\n"
                        "  replacebone \"root\" \"base\"\n}\n"));
  files.Vtx.Record<VtxStripGroup>("group 0.0.1.0.0").Flags = 7;
  EXPECT_THAT(DecompiledModel(files, DecompileOptionReadyToCompile).Script(), testing::Not(HasSubstr("nofacial")));
}

TEST(ReadyToCompile, ShowsTheFirstMeshAtRestWithoutAnimations) {
  ModelBuilder model;
  model.Animations = {AnimationDescription{}};
  model.Sequences = {SequenceDescription{.Label = "run"}};
  const DecompiledModel job(model, DecompileOptionReadyToCompile | DecompileOptionNoAnimations);
  EXPECT_EQ(job.Script("$sequence", "-"), "$sequence \"idle\" \"cube.smd\"\n");
  EXPECT_THAT(job.Files(), ElementsAre("cube.smd", "ravelback.qc"));
}

TEST(ReadyToCompile, WritesWhatStandsStillAsTheVeryNumber) {
  ModelBuilder model;
  model.Bones = {{.Name = "root", .Position = {1.0f / 3, 0.5f, 1e-9f}}};
  const AxisRuns moving = {{.Values = {0, 1}, .Total = 2}};
  BoneAnimDescription turning{.RotationRuns = std::array<AxisRuns, 3>{AxisRuns{}, AxisRuns{}, moving}};
  model.Animations = {{.FrameCount = 2, .Data = {.Bones = {turning}}}};
  model.Sequences = {SequenceDescription{.Events = {{.Cycle = 0.3f, .Event = 5}}}};
  const DecompiledModel job(model, DecompileOptionReadyToCompile | DecompileOptionKeepRotations);
  EXPECT_THAT(job.File("idle.smd"),
              HasSubstr("time 1\n  0 0.33333334 0.500000 0.000000001 0.000000 -0.000000 0.001000\n"));
  // An event that no whole frame gives back stands at a part of one.
  EXPECT_THAT(job.Script(), HasSubstr("{ event 5 0.3 }"));
}

}  // namespace
}  // namespace tarnwick::decompiler

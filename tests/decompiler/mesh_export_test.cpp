#include "decompiler/plain/meshes.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <limits>

#include "decompiled_model.h"
#include "model/studio_records.h"
#include "model/vtx_records.h"
#include "model/vvd_records.h"
#include "support/told_texts.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using core::BoxIcon;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A model with one mesh.
ModelBuilder WithMesh(MeshDescription mesh) {
  ModelBuilder model;
  model.BodyParts[0].Models[0].Meshes = {std::move(mesh)};
  return model;
}

/// The text between "triangles" and the end.
std::string TrianglesOf(const DecompiledModel& job, const std::string& file = "cube.smd") {
  const std::string text = job.File(file);
  return text.substr(text.find("triangles\n") + 10);
}

TEST(MeshExport, WritesASkeletonAndTrianglesWoundTheOtherWayRound) {
  ModelBuilder model{.Bones = {{.Name = "root", .Position = {1, -2, 0.5f}, .Angles = {0.25f, 0, -1.5f}},
                               {.Name = "upper arm", .Parent = 0}}};
  model.BodyParts[0].Models[0].Meshes = {
      {.Vertices = {{.Position = {1, 2, 3}, .Normal = {0, 0, -1}, .U = 0.25f, .V = 0},
                    {.V = 0.75f, .Weights = {{0, 0.5f}, {1, 0.5f}}},
                    {.V = -2, .Weights = {{0, 0.25f}, {1, 0.75f}}}}}};
  const std::string head =
      "version 1\nnodes\n  0 \"root\" -1\n  1 \"upper arm\" 0\nend\nskeleton\ntime 0\n"
      "  0 1.000000 -2.000000 0.500000 0.250000 0.000000 -1.500000\n"
      "  1 0.000000 0.000000 0.000000 0.000000 0.000000 0.000000\nend\ntriangles\nskin.tga\n";
  EXPECT_EQ(DecompiledModel(model).File("cube.smd"),
            head +
                "0 1.000000 2.000000 3.000000 0.000000 0.000000 -1.000000 0.250000 0.000000 1 0 1.000000\n"
                "1 0.000000 0.000000 0.000000 0.000000 0.000000 1.000000 0.000000 2.000000 2 0 0.250000 1 0.750000\n"
                "0 0.000000 0.000000 0.000000 0.000000 0.000000 1.000000 0.000000 -0.750000 2 0 0.500000 1 0.500000\n"
                "end\n");
  EXPECT_EQ(DecompiledModel(model, DecompileOptionUnweightedSmd).File("cube.smd"),
            head +
                "0 1.000000 2.000000 3.000000 0.000000 0.000000 -1.000000 0.250000 0.000000\n"
                "1 0.000000 0.000000 0.000000 0.000000 0.000000 1.000000 0.000000 2.000000\n"
                "0 0.000000 0.000000 0.000000 0.000000 0.000000 1.000000 0.000000 -0.750000\nend\n");
}

TEST(MeshExport, TakesTheFirstBoneOfTheHighestWeightAboveNothing) {
  ModelBuilder model = WithMesh(
      {.Vertices = {
           {.Weights = {{200, 0.2f}, {201, 0.4f}, {3, 0.4f}}}, {.Weights = {{7, 0}, {8, -1}}}, {.Weights = {}}}});
  model.Bones.assign(202, {});
  const std::string text = TrianglesOf(DecompiledModel(model));
  EXPECT_THAT(text, HasSubstr("\n201 0.000000"));
  EXPECT_THAT(text, HasSubstr(" 3 200 0.200000 201 0.400000 3 0.400000\n"));
  EXPECT_THAT(
      text,
      HasSubstr(
          "\n0 0.000000 0.000000 0.000000 0.000000 0.000000 1.000000 0.000000 0.000000 2 7 0.000000 8 -1.000000\n"));
  EXPECT_THAT(text, HasSubstr("\n0 0.000000 0.000000 0.000000 0.000000 0.000000 1.000000 0.000000 0.000000 0\n"));
}

TEST(MeshExport, LeavesTriangleStripsOut) {
  const MeshDescription mesh{.Lods = {{{{{0, 1, 2}, true}, {{2, 1, 0}, false}}, {{{1, 1, 1}, true}}}}};
  const DecompiledModel job(WithMesh(mesh), DecompileOptionReadyToCompile);
  const std::string text = TrianglesOf(job);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5);
  EXPECT_THAT(TextsOf(job.Result, core::Severity::Warning),
              ElementsAre(HasSubstr("cube.smd is without 2 triangle strips")));
  EXPECT_EQ(TrianglesOf(DecompiledModel(WithMesh({.Lods = {{{{{0, 1, 2}, true}}}}}))), "end\n");
}

TEST(MeshExport, WritesLodCommandsBehindEachModel) {
  ModelBuilder model;
  model.BodyParts = {
      {.Name = "torso", .Models = {{.Name = "a\\b.smd", .SwitchDistances = {0, 12.9f, -1, -0.5f}}, {.Name = ""}}},
      {.Name = "hat", .Models = {{.Name = "hat.SMD"}}}};
  ScratchFolder folder;
  const std::string out = folder.Path("out");
  for (const char* sub : {"out/a", "out/lod1_a", "out/lod2_a", "out/lod3_a"}) {
    std::filesystem::create_directories(folder.Path(sub));
  }
  DecompileJob job{.ModelPath = model.Write(folder.Path("in")), .OutputDirectory = out};
  RecordingReport report;
  EXPECT_TRUE(DecompileModel(job, report).Succeeded()) << report.LogText;
  std::string expected = "$cd \"" + out + "\"\n$modelname \"props/cube.mdl\"\n";
  const auto lods = [](const std::string& stem) {
    return "$lod 12\n {\n  replacemodel \"" + stem + "\" \"lod1_" + stem + "\"\n}\n" +  //
           "$shadowlod\n{\n  replacemodel \"" + stem + "\" \"lod2_" + stem + "\"\n}\n" +
           "$lod 0\n {\n  replacemodel \"" + stem + "\" \"lod3_" + stem + "\"\n}\n";
  };
  const auto zeroLods = [](const std::string& stem) {
    std::string text;
    for (const char* lod : {"lod1_", "lod2_", "lod3_"}) {
      text += "$lod 0\n {\n  replacemodel \"" + stem + "\" \"" + lod + stem + "\"\n}\n";
    }
    return text;
  };
  expected += "$model \"torso\" \"a/b.smd\"\n\n" + lods("a/b");
  expected += "$model \"torso\" \"UnknownModelName.smd\"\n\n" + zeroLods("UnknownModelName");
  expected += "$model \"hat\" \"hat.SMD.smd\"\n\n" + zeroLods("hat.SMD");
  EXPECT_EQ(ReadText(out + "/ravelback.qc"), expected);
  EXPECT_TRUE(std::filesystem::exists(out + "/lod2_a/b.smd"));
}

TEST(MeshExport, ReadsStripGroupsOfEveryLayout) {
  MeshDescription mesh;
  mesh.Lods = {{{{{0, 1, 2}}, {{2, 1, 0}}}, {{{1, 2, 0}}}}};
  const std::string expected = TrianglesOf(DecompiledModel(WithMesh(mesh)));
  for (const int32_t version : {48, 49, 53}) {
    for (const VtxLayout layout : {VtxLayout{25, 27}, {33, 27}, {33, 35}, {25, 35}}) {
      // A file of another version never has the layout that only version 49 is known to have.
      if (version != 49 && layout == VtxLayout{33, 27}) continue;
      ModelBuilder model = WithMesh(mesh);
      model.Version = version;
      model.Layout = layout;
      const DecompiledModel job(model);
      EXPECT_EQ(TrianglesOf(job), expected) << version << " " << layout.StripGroupSize << "/" << layout.StripSize;
      const bool ordinary = layout == (version == 49 ? VtxLayout{33, 27} : VtxLayout{25, 27});
      EXPECT_EQ(job.Report.LogText.find("with strip groups of") == std::string::npos, ordinary);
    }
  }
}

TEST(MeshExport, OrdersVerticesByFixups) {
  ModelBuilder model;
  model.BodyParts = {{.Models = {{.Name = "a.smd", .Meshes = {{}, {}}}}}, {.Models = {{.Name = "b.smd"}}}};
  const DecompiledModel plain(model);
  model.Fixups = {{0, 5, 2}, {3, 0, 3}, {-1, 3, 2}, {1, 7, 4}};
  const DecompiledModel fixed(model);
  EXPECT_TRUE(fixed.Result.Succeeded());
  for (const char* file : {"a.smd", "b.smd"}) EXPECT_EQ(fixed.File(file), plain.File(file));
  EXPECT_THAT(plain.File("b.smd"), HasSubstr("0.000000 1.000000 0.000000"));
}

TEST(MeshExport, EndsTheStageWhereVertexDataAreMissing) {
  ModelBuilder model;
  model.BodyParts = {{}, {.Models = {{.Name = "next.smd"}}}};
  const auto check = [](const ModelFiles& files) {
    const DecompiledModel plain(files);
    EXPECT_THAT(plain.File("cube.smd"), testing::EndsWith("end\ntriangles\n"));
    EXPECT_THAT(plain.Files(), ElementsAre("cube.smd", "ravelback.qc"));
    EXPECT_EQ(plain.MeshCommands(), "$model \"body\" \"cube.smd\"\n\n");
    EXPECT_THAT(plain.Report.LogText, testing::EndsWith("\r\n\r\nCompleted Dumping Model!\r\n"));
    EXPECT_FALSE(plain.Result.Succeeded());
    EXPECT_THAT(DecompiledModel(files, DecompileOptionReadyToCompile).Files(), ElementsAre("ravelback.qc"));
  };
  ModelFiles missing = model.Build();
  missing.Vvd.Bytes().clear();
  check(missing);
  ModelFiles otherId = model.Build();
  otherId.Vvd.Record<VvdHeader>("header").Id = 0;
  check(otherId);
  ModelFiles noOffset = model.Build();
  noOffset.Vvd.Record<VvdHeader>("header").VertexOffset = 0;
  check(noOffset);
}

TEST(MeshExport, RefusesANewerVertexIndexFile) {
  const DecompiledModel job(ModelBuilder{.VtxVersion = 8});
  EXPECT_THAT(job.Report.Boxes,
              ElementsAre(RecordedBox{BoxIcon::Stop, "Unknown vertex file format", "Vertex File Error"}));
  EXPECT_EQ(job.MeshCommands(), "");
  EXPECT_TRUE(job.Result.Completed);
  EXPECT_TRUE(DecompiledModel(ModelBuilder{.VtxVersion = -1}).Result.Succeeded());
}

TEST(MeshExport, EndsTheStageWhereAFileCannotBeCreated) {
  for (const std::string name : {"no such folder\\x.smd", "..\\x.smd", "a\\..\\..\\x.smd"}) {
    ModelBuilder model;
    model.BodyParts = {{.Models = {{.Name = name}}}, {}};
    const DecompiledModel job(model);
    std::string shown = name;
    std::replace(shown.begin(), shown.end(), '\\', '/');
    EXPECT_THAT(job.Report.Boxes,
                ElementsAre(RecordedBox{BoxIcon::Stop, "Error opening " + job.Out(shown) + "\n", "File Error"}));
    EXPECT_EQ(job.MeshCommands(), "$model \"body\" \"" + shown + "\"\n\n");
    EXPECT_THAT(job.Files(), ElementsAre("ravelback.qc"));
    EXPECT_FALSE(std::filesystem::exists(job.Out("../x.smd")));
  }
}

TEST(MeshExport, CountsNumbersThatAreNotFinite) {
  MeshDescription mesh;
  mesh.Vertices[0].U = std::numeric_limits<float>::quiet_NaN();
  mesh.Vertices[1].Position.x = -std::numeric_limits<float>::infinity();
  const DecompiledModel job(WithMesh(mesh));
  EXPECT_THAT(job.File("cube.smd"), HasSubstr(" -inf "));
  EXPECT_THAT(TextsOf(job.Result, core::Severity::Warning),
              ElementsAre(job.Out("cube.smd") + " holds 2 numbers that are not finite"));
}

}  // namespace
}  // namespace tarnwick::decompiler

#include "compiler/mesh/build_meshes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compile_fixture.h"
#include "compiler/mesh/strip_groups.h"

namespace tarnwick::tests {
namespace {

using namespace compiler;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const BuiltMesh& MeshOf(const BuiltMeshes& meshes, size_t mesh = 0) {
  return meshes.BodyParts.at(0).Models.at(0).Meshes.at(mesh);
}
std::vector<MeshTriangle> TrianglesAt(const BuiltMeshes& meshes, size_t lod, size_t mesh = 0) {
  return TrianglesOf(meshes.Triangles.at(0).at(0).Lods.at(lod).Meshes.at(mesh).Groups);
}

TEST(BuildMeshes, TurnsTheWindingAndVAndMakesNormalsUnit) {
  CompileFixture fixture;
  SourceBuilder source;
  source.Add("folder/skin.tga", source.Corner({1, 2, 3}, {0, 0, 0.974f}, 0.25f, 0.75f),
             source.Corner({4, 5, 6}, {0, 0, 0}), source.Corner({7, 8, 9}));
  fixture.AddModel(source.Source);
  const BuiltMeshes meshes = fixture.Meshes();
  EXPECT_THAT(fixture.Told, IsEmpty());
  EXPECT_THAT(meshes.Textures, ElementsAre("skin"));
  ASSERT_EQ(meshes.Vertices.size(), 3U);
  EXPECT_EQ(meshes.Vertices[0].Position.x, 1);
  EXPECT_EQ(meshes.Vertices[0].V, 0.25f);
  EXPECT_EQ(meshes.Vertices[0].Normal.z, 1);
  EXPECT_EQ(meshes.Vertices[1].Normal.z, 0) << "a zero normal stays zero";
  EXPECT_THAT(TrianglesAt(meshes, 0), ElementsAre(MeshTriangle{0, 2, 1}));
  EXPECT_NE(fixture.Bones.Bones[0].Flags & model::BoneFlagVertexLod0, 0U);
}

TEST(BuildMeshes, TurnsAStaticModelByAQuarterAsFloatsHaveIt) {
  CompileFixture fixture;
  fixture.Bones.Static = true;
  SourceBuilder source;
  source.Add("skin", source.Corner({0, 100, 3}, {0, 1, 0}), source.Corner({1, 0, 0}), source.Corner({2, 0, 0}));
  fixture.AddModel(source.Source);
  const BuiltMeshes meshes = fixture.Meshes();
  EXPECT_EQ(meshes.Vertices[0].Position.x, -100);
  EXPECT_EQ(meshes.Vertices[0].Position.y, 100 * -4.371139e-08f);
  EXPECT_EQ(meshes.Vertices[0].Normal.y, -4.371139e-08f);
  fixture.Options.KeepValues = true;
  EXPECT_EQ(fixture.Meshes().Vertices[0].Position.y, 0) << "values that are kept are turned exactly";
}

TEST(BuildMeshes, DropsWhatIsNoTriangleUnlessValuesAreKept) {
  CompileFixture fixture;
  SourceBuilder source;
  source.Triangle("a", {0, 0, 0}, {1, 0, 0}, {0, 1, 0}).Triangle("a", {0, 0, 0}, {0, 0, 0}, {5, 5, 5});
  source.Triangle("a", {1, 0, 0}, {0, 1, 0}, {0, 0, 0}).Triangle("a", {0, 0, 0}, {0, 1, 0}, {1, 0, 0});
  fixture.AddModel(source.Source);
  EXPECT_EQ(TrianglesAt(fixture.Meshes(), 0).size(), 2U) << "a copy goes, its back side stays";
  fixture.Options.NormalAngle = 0;
  EXPECT_EQ(TrianglesAt(fixture.Meshes(), 0).size(), 4U);
}

TEST(BuildMeshes, KeepsThreeWeightsAndAppliesScaleAndReverse) {
  CompileFixture fixture;
  for (const char* name : {"a", "b", "c", "d"}) fixture.AddBone(name, 0);
  SourceBuilder source;
  source.Source.Nodes = {{"root", -1}, {"a", 0}, {"b", 0}, {"c", 0}, {"d", 0}};
  source.Add("skin", source.Corner({1, 0, 0}, {0, 0, 1}, 0, 0, {{1, 0.1f}, {2, 0.4f}, {3, 0.3f}, {4, 0.2f}}),
             source.Corner({2, 0, 0}, {0, 0, 1}, 0, 0, {{1, 0.96f}, {2, 0.04f}}), source.Corner({3, 0, 0}));
  PlanModel& model = fixture.AddModel(source.Source);
  model.Mesh.Scale = 2;
  model.Mesh.Reverse = true;
  const BuiltMeshes meshes = fixture.Meshes();
  const model::VvdVertex& vertex = meshes.Vertices[0];
  EXPECT_EQ(vertex.WeightCount, 3);
  EXPECT_THAT(std::vector<int>(vertex.Bones, vertex.Bones + 3), ElementsAre(2, 3, 4));
  EXPECT_FLOAT_EQ(vertex.Weights[0] + vertex.Weights[1] + vertex.Weights[2], 1);
  EXPECT_EQ(meshes.Vertices[1].WeightCount, 1);
  EXPECT_EQ(vertex.Position.x, 2);
  EXPECT_EQ(vertex.Normal.z, -1);
  EXPECT_THAT(TrianglesAt(meshes, 0), ElementsAre(MeshTriangle{0, 1, 2}));
}

TEST(BuildMeshes, SharesVerticesBetweenLevelsCoarsestFirst) {
  CompileFixture fixture;
  fixture.AddBone("arm", 0);
  SourceBuilder fine, coarse;
  fine.Source.Nodes = coarse.Source.Nodes = {{"root", -1}, {"arm", 0}};
  fine.Triangle("a", {0, 0, 0}, {1, 0, 0}, {0, 1, 0}).Triangle("b", {9, 0, 0}, {9, 1, 0}, {9, 0, 1});
  fine.Triangle("a", {0, 0, 0}, {0, 1, 0}, {-1, 0, 0});
  // The first corner lies a little beside the fine mesh's, the last is its own.
  coarse.Triangle("a", {0.05f, 0, 0}, {1, 0, 0}, {0, 3, 0}).Triangle("b", {9, 0, 0}, {9, 1, 0}, {9, 0, 1});
  fixture.AddModel(fine.Source, "Fine.smd");
  PlanLod& lod = fixture.Plan.Lods.emplace_back();
  lod.Threshold = 10;
  lod.Replacements.push_back({{}, "fine", fixture.AddSource(coarse.Source, "coarse.smd")});
  lod.RemovedMeshes.push_back("B");
  const BuiltMeshes meshes = fixture.Meshes();
  EXPECT_THAT(fixture.Told, IsEmpty());
  EXPECT_EQ(meshes.LodCount, 2);
  const BuiltMesh& mesh = MeshOf(meshes);
  EXPECT_EQ(mesh.VertexCount, 5);
  EXPECT_THAT(mesh.LodVertexCounts, ElementsAre(5, 3, 3, 3, 3, 3, 3, 3));
  EXPECT_THAT(std::vector<uint8_t>(meshes.VertexLods.begin(), meshes.VertexLods.begin() + 5),
              ElementsAre(1, 1, 1, 0, 0));
  EXPECT_EQ(meshes.Vertices[0].Position.x, 0) << "the finer level's vertex";
  EXPECT_EQ(meshes.Triangles[0][0].Lods[1].SwitchDistance, 10);
  EXPECT_EQ(TrianglesAt(meshes, 1).size(), 1U);
  EXPECT_THAT(TrianglesAt(meshes, 1, 1), IsEmpty()) << "removed by its material";
  EXPECT_EQ(fixture.Bones.Bones[1].Flags, 0U);
}

TEST(BuildMeshes, SharesVerticesBetweenLevelsThatLookTheSameWayAlone) {
  CompileFixture fixture;
  SourceBuilder fine, coarse;
  const float sine = 0.05f, cosine = 0.99874922f;  // not quite three degrees
  const float near = 0.02f, nearCosine = 0.9998f;  // a little above one
  fine.Triangle("a", {0, 0, 0}, {1, 0, 0}, {0, 1, 0});
  coarse.Add("a", coarse.Corner({0, 0, 0}, {sine, 0, cosine}), coarse.Corner({1, 0, 0}, {near, 0, nearCosine}),
             coarse.Corner({0, 1.08f, 0}));
  fixture.AddModel(fine.Source, "fine.smd");
  fixture.Plan.Lods.emplace_back().Replacements.push_back({{}, "fine", fixture.AddSource(coarse.Source, "coarse.smd")});
  const BuiltMeshes meshes = fixture.Meshes();
  EXPECT_EQ(MeshOf(meshes).VertexCount, 5) << "one that looks elsewhere, one that is too far";
}

TEST(BuildMeshes, GivesReplacedBonesOfALevelVerticesOfTheirOwn) {
  CompileFixture fixture;
  fixture.AddBone("arm", 0);
  SourceBuilder source;
  source.Source.Nodes = {{"root", -1}, {"arm", 0}};
  source.Add("a", source.Corner({0, 0, 0}, {0, 0, 1}, 0, 0, {{1, 1}}), source.Corner({1, 0, 0}),
             source.Corner({0, 1, 0}));
  fixture.AddModel(source.Source);
  fixture.Plan.Lods.emplace_back().Threshold = 5;
  fixture.Bones.LodBones = {{}, {0, 0}};
  const BuiltMeshes meshes = fixture.Meshes();
  ASSERT_EQ(meshes.Vertices.size(), 4U);
  EXPECT_EQ(MeshOf(meshes).LodVertexCounts[1], 3);
  EXPECT_EQ(fixture.Bones.Bones[1].Flags, model::BoneFlagVertexLod0) << "the arm moves nothing at the coarser level";
  EXPECT_EQ(meshes.Vertices[3].Bones[0], 1);
}

TEST(BuildMeshes, PutsTexturesByFirstUseAndSkinsBehindThem) {
  CompileFixture fixture;
  SourceBuilder source;
  source.Triangle("x", {0, 0, 0}, {1, 0, 0}, {0, 1, 0}).Triangle("a.bmp", {0, 0, 0}, {1, 0, 0}, {0, 1, 0});
  source.Triangle("X", {0, 0, 0}, {1, 0, 0}, {0, 0, 1});
  fixture.AddModel(source.Source);
  fixture.Plan.Skins.push_back({{}, {{"a"}, {"folder/b"}, {"c"}}});
  fixture.Plan.RenamedMaterials = {{"x", "y"}};
  const BuiltMeshes meshes = fixture.Meshes();
  EXPECT_THAT(meshes.Textures, ElementsAre("y", "a", "b", "c"));
  EXPECT_THAT(meshes.Skins, ElementsAre(ElementsAre(0, 1, 2, 3), ElementsAre(0, 2, 2, 3), ElementsAre(0, 3, 2, 3)));
  EXPECT_EQ(meshes.BodyParts[0].Models[0].Meshes.size(), 2U);
}

TEST(BuildMeshes, SharesCornersThatASphereMakesAlike) {
  CompileFixture fixture;
  SourceBuilder source;
  source.Box({-4, -4, -4}, {4, 4, 4}, "leaf").Box({-1, -1, -1}, {1, 1, 1}, "stem");
  const smd::Triple sides[] = {{0, 0, -1}, {0, 0, 1}, {0, -1, 0}, {0, 1, 0}, {-1, 0, 0}, {1, 0, 0}};
  for (size_t i = 0; i < source.Source.Corners.size(); ++i) source.Source.Corners[i].Normal = sides[i % 36 / 6];
  compiler::PlanModel& model = fixture.AddModel(source.Source);
  model.Face.push_back(compiler::PlanSphereNormals{{}, "LEAF.vmt", {0, 0, -4}});
  model.Face.push_back(compiler::PlanSphereNormals{{}, "bark", {0, 0, 0}});
  const compiler::BuiltMeshes meshes = fixture.Meshes();
  EXPECT_THAT(fixture.Told, ElementsAre(HasSubstr("no triangle wears the material \"bark\"")));
  ASSERT_EQ(meshes.Vertices.size(), 8U + 24U);
  for (size_t i = 0; i < 8; ++i) {
    const model::VvdVertex& vertex = meshes.Vertices[i];
    const bool isLow = float{vertex.Position.z} < 0;
    EXPECT_NEAR(float{vertex.Normal.z}, isLow ? 0 : 0.8165, 1e-4);
    EXPECT_NEAR(float{vertex.Normal.x}, float{vertex.Position.x} * (isLow ? 0.17678f : 0.10206f), 1e-4);
  }
}

TEST(BuildMeshes, KeepsEmptyChoicesOfABodyGroup) {
  CompileFixture fixture;
  SourceBuilder source;
  source.Triangle("x", {0, 0, 0}, {1, 0, 0}, {0, 1, 0});
  fixture.AddModel(source.Source);
  fixture.Plan.BodyParts[0].Models.emplace_back();
  fixture.Plan.Lods.emplace_back().Threshold = 3;
  const BuiltMeshes meshes = fixture.Meshes();
  ASSERT_EQ(meshes.BodyParts[0].Models.size(), 2U);
  EXPECT_TRUE(meshes.BodyParts[0].Models[1].Meshes.empty());
  EXPECT_EQ(meshes.BodyParts[0].Models[1].FirstVertex, 3);
  EXPECT_EQ(meshes.Triangles[0][1].Lods.size(), 2U);
}

TEST(BuildMeshes, TellsWhatAModelCannotHold) {
  CompileFixture fixture;
  SourceBuilder source;
  for (int i = 0; i < 22000; ++i) {
    const auto x = static_cast<float>(i);
    source.Triangle("big", {x, 0, 0}, {x, 1, 0}, {x, 0, 1});
  }
  fixture.AddModel(source.Source);
  fixture.Meshes();
  ASSERT_EQ(fixture.Errors, 1U);
  EXPECT_THAT(fixture.Told[0], AllOf(HasSubstr("66000 vertices"), HasSubstr("big"), HasSubstr("65536")));

  CompileFixture levels;
  levels.AddModel(SourceBuilder().Source);
  levels.Plan.Lods.resize(8);
  levels.Meshes();
  EXPECT_THAT(levels.Told, ElementsAre(HasSubstr("9 levels of detail")));

  CompileFixture unknown;
  unknown.AddModel(SourceBuilder().Source);
  unknown.Plan.Lods.emplace_back().Replacements.push_back({{}, "other", {}});
  unknown.Meshes();
  EXPECT_THAT(unknown.Told, ElementsAre(HasSubstr("no body shows the mesh \"other\"")));
  EXPECT_EQ(unknown.Errors, 0U);
}

}  // namespace
}  // namespace tarnwick::tests

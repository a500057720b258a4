#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "model/vtx_records.h"
#include "round_trip.h"
#include "support/model_builder.h"
#include "support/real_files.h"

// Meshes, faces and collision models come back to the byte when a model is taken apart, compiled and taken apart again.

namespace tarnwick::tests {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

TEST(MeshRoundTrip, RealModelsComeBackToTheByte) {
  const fs::path folder = fs::path(RealFilesFolder()) / "models";
  if (!fs::exists(folder)) GTEST_SKIP() << "no real models in " << folder;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().extension() != ".mdl") continue;
    SCOPED_TRACE(entry.path());
    const RoundTrip trip(entry.path().string());
    ASSERT_TRUE(trip.Compiled) << trip.Told;
    EXPECT_THAT(trip.Layout, IsEmpty());
    EXPECT_THAT(trip.Different(RoundTrip::IsMesh), IsEmpty());
  }
}

VertexDescription Vertex(model::Vec3 position, float u, std::vector<BoneWeight> weights = {{0, 1}}) {
  return {.Position = position, .Normal = {0, 0, 1}, .U = u, .V = 0.25f, .Weights = std::move(weights)};
}

TEST(MeshRoundTrip, LevelsAndManyBonesComeBack) {
  ModelBuilder model;
  model.Bones = {{.Name = "root"}};
  for (int i = 1; i < 120; ++i) model.Bones.push_back({.Name = "bone" + std::to_string(i), .Parent = i - 1});
  model.Textures = {"skin", "cloth"};
  MeshDescription skin, cloth;
  skin.Vertices.clear();
  std::vector<uint16_t> fine, coarse;
  for (uint8_t i = 0; i < 120; ++i) {
    const auto x = static_cast<float>(i);
    skin.Vertices.push_back(
        Vertex({x, 0.1f * x * x, -x}, x / 120, {{i, 0.75f}, {static_cast<uint8_t>(119 - i), 0.25f}}));
    if (i < 2) continue;
    fine.insert(fine.end(), {0, static_cast<uint16_t>(i - 1), i});
    if (i % 2 == 0) coarse.insert(coarse.end(), {1, static_cast<uint16_t>(i - 2), i});
  }
  skin.Lods = {Triangles(fine), Triangles(coarse)};
  cloth.Material = 1;
  cloth.Lods = {Triangles({0, 1, 2}), {}};
  model.BodyParts = {{.Name = "body", .Models = {{.Meshes = {skin, cloth}, .SwitchDistances = {0, 12}}}}};
  ScratchFolder folder;
  const RoundTrip trip(model.Write(folder.Path()));
  ASSERT_TRUE(trip.Compiled) << trip.Told;
  EXPECT_THAT(trip.Layout, IsEmpty());
  EXPECT_THAT(trip.Different(RoundTrip::IsMesh), IsEmpty());
}

TEST(MeshRoundTrip, FacesComeBack) {
  ModelBuilder model;
  model.Textures = {"skin", "teeth"};
  MeshDescription skin, teeth;
  skin.Vertices = {Vertex({0, 0, 0}, 0), Vertex({1, 0, 0}, 0.5f), Vertex({0, 1, 0}, 1), Vertex({0, 0, 0}, 0.75f)};
  skin.Lods = {{{StripDescription{{0, 1, 2}}}, {StripDescription{{1, 3, 2}}}}};
  // The first group's triangle is moved, the second's is not; two vertices lie in one place.
  skin.Flexes = {{.FlexDesc = 0, .VertAnims = {{0, {0, 0.0123f, -3.5f}, {0.001f, 0, 0}}}},
                 {.FlexDesc = 1, .VertAnims = {{0, {0.5f, 0, 0}}}, .Partner = 2}};
  teeth.Material = 1;
  teeth.Vertices = {Vertex({5, 0, 0}, 0), Vertex({6, 0, 0}, 0), Vertex({5, 1, 0}, 0)};
  teeth.Flexes = {{.FlexDesc = 0, .VertAnims = {{1, {0, 0, 60}}, {2, {0, 1e-4f, 0}}}}};
  model.BodyParts = {{.Name = "head", .Models = {{.Meshes = {skin, teeth}}}}};
  model.FlexDescs = {"smile", "browR", "browL", "hidden"};
  model.FlexControllers = {{"mouth", "smile", 0, 1}, {"brow", "right_brow", -1, 1}, {"brow", "left_brow", -1, 1}};
  model.FlexRules = {{0, {{model::FlexOpController, 0}}},
                     {3, {{model::FlexOpController, 1}, Constant(0.25f), {model::FlexOpMultiply, 0}}},
                     {1, {{model::FlexOpFlexDesc, 3}, Constant(-2), {model::FlexOpSubtract, 0}}}};
  model.Mouths = {{.Bone = 0, .Forward = {0, 1, 0}, .FlexDesc = 0}};
  ScratchFolder folder;
  const RoundTrip trip(model.Write(folder.Path()));
  ASSERT_TRUE(trip.Compiled) << trip.Told;
  EXPECT_THAT(trip.Layout, IsEmpty());
  EXPECT_THAT(trip.Different(RoundTrip::IsMesh), IsEmpty());
  const auto faceOf = [](const std::map<std::string, std::string>& sources) {
    const std::string& script = sources.at("ravelback.qc");
    const size_t begin = script.find("$model \"");
    return script.substr(begin, script.find("\n}\n", begin) - begin);
  };
  EXPECT_EQ(faceOf(trip.Before), faceOf(trip.After));
}

TEST(MeshRoundTrip, LevelsWithoutFacesComeBack) {
  ModelBuilder model;
  MeshDescription skin;
  skin.Vertices = {Vertex({0, 0, 0}, 0), Vertex({1, 0, 0}, 0.5f), Vertex({0, 1, 0}, 1), Vertex({0, 0, 5}, 0.75f)};
  // At the coarser level the triangle that would move stands last, in one group with the other.
  skin.Lods = {{{StripDescription{{0, 1, 2}}}, {StripDescription{{1, 3, 2}}}}, Triangles({1, 3, 2, 0, 1, 2})};
  skin.Flexes = {{.FlexDesc = 0, .VertAnims = {{0, {0, 1, 0}}}}};
  model.BodyParts = {{.Name = "head", .Models = {{.Meshes = {skin}, .SwitchDistances = {0, 8}}}}};
  model.FlexDescs = {"smile"};
  ScratchFolder folder;
  ModelFiles files = model.Build();
  files.Vtx.Record<model::VtxStripGroup>("group 0.0.0.0.0").Flags = 7;
  const RoundTrip trip(files.Write(folder.Path(), "cube"));
  ASSERT_TRUE(trip.Compiled) << trip.Told;
  EXPECT_THAT(trip.Layout, IsEmpty());
  EXPECT_THAT(trip.Before.at("ravelback.qc"), testing::HasSubstr("nofacial"));
  EXPECT_THAT(trip.After.at("ravelback.qc"), testing::HasSubstr("nofacial"));
  EXPECT_THAT(trip.Different(RoundTrip::IsMesh), IsEmpty());
}

TEST(MeshRoundTrip, CollisionModelsComeBack) {
  const auto collision = [](const std::map<std::string, std::string>& sources) {
    const std::string& script = sources.at("ravelback.qc");
    return script.substr(script.find("$collision"));
  };
  ModelBuilder single, joined;
  single.Bones = joined.Bones = {{.Name = "root", .Position = {1, 2, 3}, .Angles = {0.3f, 0.2f, 0.1f}},
                                 {.Name = "arm", .Parent = 0, .Position = {0, 0, 9}, .Angles = {1, 0, 0}}};
  single.Physics = PhyBuilder{};
  single.Physics->Solids[0].Boxes = {BoxDescription{}, BoxDescription{{5, -1, -1}, {7, 1, 1}}};
  single.Physics->Values.IsConcave = true;
  single.Physics->Values.TotalMass = 35;
  single.Physics->SharesMass = true;
  joined.Physics = PhyBuilder{};
  joined.Physics->Solids = {{.Values = {.Name = "root", .SurfaceProp = "metal"}, .BoneNumber = 1},
                            {.Values = {.Name = "arm", .Parent = "root", .SurfaceProp = "metal", .Inertia = 3},
                             .BoneNumber = 2,
                             .Boxes = {BoxDescription{{-2, -1, -1}, {3, 4, 5}}}}};
  joined.Physics->Values.Constraints = {{0, 1, {{{-10, 20, 0.2f}, {0, 0, 0}, {-360, 360, 0}}}}};
  joined.Physics->Values.TotalMass = 50;
  joined.Physics->Values.RootName = "root";
  joined.Physics->SharesMass = true;
  for (const ModelBuilder& model : {single, joined}) {
    ScratchFolder folder;
    const RoundTrip trip(model.Write(folder.Path()));
    ASSERT_TRUE(trip.Compiled) << trip.Told;
    EXPECT_FALSE(trip.Files.Phy.empty());
    EXPECT_THAT(trip.Layout, IsEmpty());
    EXPECT_THAT(trip.Different(RoundTrip::IsMesh), IsEmpty());
    EXPECT_EQ(collision(trip.Before), collision(trip.After));
  }
}

}  // namespace
}  // namespace tarnwick::tests

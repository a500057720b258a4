#include "compiler/mesh/strip_groups.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "compiler/mesh/shape_match.h"
#include "compiler/mesh/tangents.h"
#include "compiler/mesh/vertex_join.h"

namespace tarnwick::tests {
namespace {

using namespace compiler;

/// A fan of `count` triangles; vertex i follows bone i of 200 alone.
std::vector<model::VvdVertex> OneBoneEach(size_t count) {
  std::vector<model::VvdVertex> vertices(count);
  for (size_t i = 0; i < count; ++i) {
    vertices[i].WeightCount = 1;
    vertices[i].Weights[0] = 1;
    vertices[i].Bones[0] = static_cast<uint8_t>(i % 200);
  }
  return vertices;
}

TEST(StripGroups, PartTrianglesByTheBonesThatTheHardwareHolds) {
  const auto vertices = OneBoneEach(200);
  std::vector<MeshTriangle> triangles;
  for (uint32_t i = 1; i + 1 < 200; ++i) triangles.push_back({0, i, i + 1});
  const auto groups = MakeStripGroups(vertices, triangles, {});
  ASSERT_EQ(groups.size(), 1U);
  EXPECT_EQ(TrianglesOf(groups), triangles);
  const BuiltStripGroup& group = groups[0];
  ASSERT_GE(group.Strips.size(), 4U);
  int32_t nextIndex = 0, nextVertex = 0;
  for (const BuiltStrip& strip : group.Strips) {
    EXPECT_LE(strip.Bones.size(), MostStripBones);
    EXPECT_EQ(strip.FirstIndex, nextIndex);
    EXPECT_EQ(strip.FirstVertex, nextVertex);
    nextIndex += strip.IndexCount;
    nextVertex += strip.VertexCount;
    for (int32_t i = strip.FirstVertex; i < nextVertex; ++i) {
      const model::VtxVertex& vertex = group.Vertices[static_cast<size_t>(i)];
      EXPECT_EQ(strip.Bones[vertex.Bones[0]], vertices[vertex.MeshVertex].Bones[0]);
    }
    for (int32_t i = strip.FirstIndex; i < nextIndex; ++i) {
      EXPECT_GE(group.Indices[static_cast<size_t>(i)], strip.FirstVertex);
      EXPECT_LT(group.Indices[static_cast<size_t>(i)], nextVertex);
    }
  }
  EXPECT_EQ(nextIndex, static_cast<int32_t>(group.Indices.size()));
  EXPECT_EQ(nextVertex, static_cast<int32_t>(group.Vertices.size()));
}

TEST(StripGroups, PutMovedTrianglesAheadInAGroupOfTheirOwn) {
  const auto vertices = OneBoneEach(6);
  const std::vector<MeshTriangle> triangles = {{0, 1, 2}, {2, 3, 4}, {0, 2, 1}, {3, 4, 5}};
  const std::vector<uint8_t> moved = {0, 0, 0, 1, 0, 0};
  const auto groups = MakeStripGroups(vertices, triangles, {false, moved});
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].Flags, 7);
  EXPECT_EQ(groups[1].Flags, 2);
  const std::vector<MeshTriangle> expected = {{2, 3, 4}, {3, 4, 5}, {0, 1, 2}, {0, 2, 1}};
  EXPECT_EQ(TrianglesOf(groups), expected);
}

TEST(StripGroups, NameNoBonesInAStaticModel) {
  const auto groups = MakeStripGroups(OneBoneEach(3), std::vector<MeshTriangle>{{2, 1, 0}}, {true, {}});
  ASSERT_EQ(groups.size(), 1U);
  EXPECT_TRUE(groups[0].Strips[0].Bones.empty());
  EXPECT_EQ(groups[0].Strips[0].MostWeights, 0);
  EXPECT_EQ(groups[0].Vertices[0].MeshVertex, 2);
  EXPECT_EQ(groups[0].Vertices[0].BoneCount, 0);
}

MeshVertex At(float x, double degrees, float u = 0) {
  MeshVertex vertex;
  vertex.Position = {x, 0, 0};
  const double angle = degrees / 180 * 3.14159265358979;
  vertex.Normal = {0, static_cast<float>(std::sin(angle)), static_cast<float>(std::cos(angle))};
  vertex.U = u;
  vertex.Weights = {1, {0, 0, 0}, {1, 0, 0}};
  return vertex;
}

TEST(VertexJoiner, JoinsNormalsBelowTheAngleToTheFirstThatFits) {
  VertexJoiner joiner(JoinRule{2});
  EXPECT_EQ(joiner.Add(At(0, 0)), 0U);
  EXPECT_EQ(joiner.Add(At(0, 1.9)), 0U);
  EXPECT_EQ(joiner.Add(At(0, 2.1)), 1U);
  EXPECT_EQ(joiner.Add(At(0, 4)), 1U);
  EXPECT_EQ(joiner.Add(At(0, 0, 0.5f)), 2U);
  EXPECT_EQ(joiner.Add(At(1e-6f, 0)), 3U) << "places are not welded";
  EXPECT_EQ(joiner.Add(At(-0.0f, 0)), 0U) << "both zeros are one place";
  MeshVertex other = At(0, 0);
  other.Weights.Bones[0] = 1;
  EXPECT_EQ(joiner.Add(other), 4U);
}

TEST(VertexJoiner, TakesAnAngleOfZeroByEachBit) {
  VertexJoiner joiner(JoinRule{0});
  EXPECT_EQ(joiner.Add(At(0, 0)), 0U);
  EXPECT_EQ(joiner.Add(At(-0.0f, 0)), 1U);
  EXPECT_EQ(joiner.Add(At(0, 0.001)), 2U);
  for (uint32_t i = 0; i < 5000; ++i) joiner.Add(At(static_cast<float>(i), 0));
  EXPECT_EQ(joiner.Add(At(4999, 0)), 3U + 4998U);
}

TEST(VertexJoiner, StaysQuickWhereAllCornersLieInOnePlace) {
  VertexJoiner joiner(JoinRule{0.001f});
  for (int i = 0; i < 200000; ++i) joiner.Add(At(0, i * 0.0017));
  EXPECT_GT(joiner.Vertices.size(), 1000U);
}

TEST(Tangents, FollowUAndTellTheSideOfV) {
  std::vector<MeshVertex> vertices = {At(0, 0), At(1, 0, 1), At(0, 0)};
  vertices[2].Position = {0, 1, 0};
  vertices[2].V = 1;
  const std::vector<MeshTriangle> triangle = {{0, 1, 2}};
  const std::array<float, 4> along = {1, 0, 0, 1};
  EXPECT_EQ(TangentsOf(vertices, triangle)[0], along);
  vertices[2].V = -1;
  const std::array<float, 4> mirrored = {1, 0, 0, -1};
  EXPECT_EQ(TangentsOf(vertices, triangle)[1], mirrored);
  vertices[1].U = 0;
  const std::array<float, 4> none = {0, 0, 0, 1};
  EXPECT_EQ(TangentsOf(vertices, triangle)[2], none) << "no area in the texture";
}

TEST(ShapeMatch, GivesAlikePointsOutOneByOneAndFindsTheNearest) {
  const std::vector<ShapePoint> points = {
      {{0, 0, 0}, {0, 0, 1}}, {{5, 0, 0}, {0, 0, 1}}, {{0, 0, 0}, {0, 0, 1}}, {{0, 0, 0}, {1, 0, 0}}};
  ShapeMatch match(points);
  EXPECT_EQ(match.Find({0, 0, 0}, {0, 0, 1}), 0);
  EXPECT_EQ(match.CountLonely(), 1) << "those beside one that is used are none";
  EXPECT_EQ(match.Find({0, 0, 0}, {0, 0, 1}), 2);
  EXPECT_EQ(match.Find({0, 0, 0}, {0, 0, 1}), 2) << "the last as often as need be";
  EXPECT_EQ(match.Find({0, 0, 0}, {0.9f, 0, 0.4f}), 3);
  EXPECT_EQ(match.Find({5.006f, -0.003f, 0}, {0, 0, 1}), 1);
  EXPECT_EQ(match.Find({5.02f, 0, 0}, {0, 0, 1}), -1);
  EXPECT_EQ(match.CountLonely(), 0);
}

}  // namespace
}  // namespace tarnwick::tests

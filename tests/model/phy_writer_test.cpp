#include "model/phy_writer.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>

#include "model/phy_measures.h"
#include "model/phy_records.h"
#include "support/phy_builder.h"

namespace {

using namespace tarnwick;
using namespace tarnwick::model;
using tests::BoxSolid;
using tests::HullOfRow;

template <typename T>
T At(const std::string& bytes, int64_t offset) {
  T record;
  std::memcpy(&record, bytes.data() + offset, sizeof record);
  return record;
}

constexpr int64_t Surface = sizeof(PhySolidHeader);

std::string Written(const PhySolid& solid, const std::vector<PhyCorners>& hull = {}) {
  std::string reason;
  const auto bytes = WritePhySolid(solid, hull, &reason);
  EXPECT_TRUE(bytes) << reason;
  return bytes.value_or("");
}

/// The half of a cube of side 10 inches that is cut off at three corners.
PhySolid Corner() {
  PhySolid solid;
  for (const Vec3& p : {Vec3{0, 0, 0}, Vec3{10, 0, 0}, Vec3{0, 10, 0}, Vec3{0, 0, 10}}) {
    solid.Points.push_back(ModelToPhy(p));
  }
  solid.Pieces = {{0, {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}}}};
  return solid;
}

TEST(PhyMeasures, MeasuresABoxWithPlaceAndSizeOnEachAxis) {
  const PhyMeasures box = MeasurePhySolid(BoxSolid({{{10, 20, 30}, {20, 40, 60}}}));
  EXPECT_NEAR(box.CubicInches, 6000, 1e-3);
  // The file's y is the model's z, its z the model's -y.
  EXPECT_NEAR(box.MassCentre[0], 15 * 0.0254, 1e-7);
  EXPECT_NEAR(box.MassCentre[1], -45 * 0.0254, 1e-6);
  EXPECT_NEAR(box.MassCentre[2], 30 * 0.0254, 1e-7);
  const double scale = 0.0254 * 0.0254 / 12;
  EXPECT_NEAR(box.Inertia[0], std::hypot(900, 400) * scale, 1e-7);
  EXPECT_NEAR(box.Inertia[1], std::hypot(100, 400) * scale, 1e-7);
  EXPECT_NEAR(box.Inertia[2], std::hypot(100, 900) * scale, 1e-7);
  EXPECT_NEAR(box.Radius, std::sqrt(25 + 100 + 225) * 0.0254, 1e-7);
  // The corner of the largest side is farthest from the line along that side's normal.
  EXPECT_EQ(box.Deviation, static_cast<int>(250 * std::sqrt(325.0 / 350)) + 1);
  EXPECT_EQ(box.AreaShares, (PhyVector{1, 1, 1}));
}

TEST(PhyMeasures, CountsTheCellsThatPiecesCoverAndEachPieceOnItsOwn) {
  const PhyMeasures corner = MeasurePhySolid(Corner());
  for (const double share : corner.AreaShares) EXPECT_NEAR(share, 210.0 / 400, 3.0 / 400);  // with those on the edge
  EXPECT_NEAR(corner.CubicInches, 1000.0 / 6, 1e-3);
  EXPECT_NEAR(corner.MassCentre[0], 2.5 * 0.0254, 1e-7);
  // Two boxes with a gap as wide as one of them.
  const PhyMeasures two = MeasurePhySolid(BoxSolid({{{0, 0, 0}, {4, 4, 4}}, {{8, 0, 0}, {12, 4, 4}}}));
  EXPECT_NEAR(two.AreaShares[0], 1, 1e-9);
  EXPECT_NEAR(two.AreaShares[1], 2.0 / 3, 1e-9);
  EXPECT_NEAR(two.AreaShares[2], 2.0 / 3, 1e-9);
  EXPECT_NEAR(two.CubicInches, 128, 1e-3);
  // A copy weighs as much again; one within the other hides nothing.
  const PhyMeasures copies = MeasurePhySolid(BoxSolid({{{0, 0, 0}, {4, 4, 4}}, {{0, 0, 0}, {4, 4, 4}}}));
  EXPECT_NEAR(copies.CubicInches, 128, 1e-3);
  EXPECT_NEAR(copies.MassCentre[0], 2 * 0.0254, 1e-7);
}

TEST(PhyMeasures, GivesAFlatSolidItsMiddleAndNoVolume) {
  PhySolid flat;
  for (const Vec3& p : {Vec3{0, 0, 5}, Vec3{8, 0, 5}, Vec3{0, 4, 5}}) flat.Points.push_back(ModelToPhy(p));
  flat.Pieces = {{0, {{0, 1, 2}, {0, 2, 1}}}};
  const PhyMeasures measures = MeasurePhySolid(flat);
  EXPECT_EQ(measures.CubicInches, 0);
  EXPECT_NEAR(measures.MassCentre[0], 8.0 / 3 * 0.0254, 1e-7);
  EXPECT_NEAR(measures.Inertia[1], measures.Radius * measures.Radius / 2, 1e-12);
  EXPECT_EQ(measures.AreaShares[0], 0);
  EXPECT_GT(measures.AreaShares[2], 0.4);
}

TEST(PhyWriter, LaysOutOnePieceInOrderWithoutGaps) {
  const std::string bytes = Written(BoxSolid({{{0, 0, 0}, {4, 6, 8}}}, 3));
  ASSERT_EQ(bytes.size(), 4u + 28 + 48 + 16 + 16 * 12 + 16 * 8 + 28);
  const auto header = At<PhySolidHeader>(bytes, 0);
  EXPECT_EQ(header.Size, static_cast<int32_t>(bytes.size()) - 4);
  EXPECT_EQ(header.SurfaceSize, header.Size - 28);
  const auto surface = At<PhySurface>(bytes, Surface);
  EXPECT_EQ(surface.DeviationAndSize >> 8, static_cast<uint32_t>(header.SurfaceSize));
  EXPECT_EQ(surface.RootOffset, 48 + 16 + 16 * 12 + 16 * 8);
  const auto ledge = At<PhyLedge>(bytes, Surface + 48);
  EXPECT_EQ(ledge.BoneOrNode, 3);
  EXPECT_EQ(ledge.KindAndSize, PhyLedgePiece | (1 + 12 + 8) << 8);
  EXPECT_EQ(48 + ledge.PointOffset, surface.RootOffset - 16 * 8);
  const auto root = At<PhyNode>(bytes, Surface + surface.RootOffset);
  EXPECT_EQ(root.RightOffset, 0);
  EXPECT_EQ(surface.RootOffset + root.LedgeOffset, 48);
  EXPECT_NEAR(float{root.Centre.y}, -4 * 0.0254f, 1e-6);
  const double radius = std::sqrt(4.0 + 9 + 16);
  EXPECT_NEAR(root.Radius, radius * 0.0254, 1e-6);
  EXPECT_EQ(root.Extents[0], static_cast<int>(250 * 2 / radius) + 1);
  EXPECT_EQ(root.Extents[1], static_cast<int>(250 * 4 / radius) + 1);
  EXPECT_EQ(root.Extents[2], static_cast<int>(250 * 3 / radius) + 1);
}

/// Follows the neighbours of all edges of the ledge at `place`; returns how many edges do not come back.
int BrokenEdges(const std::string& bytes, int64_t place) {
  const auto ledge = At<PhyLedge>(bytes, place);
  const int64_t first = place + 16;
  const auto wordAt = [&](int64_t word) { return At<uint32_t>(bytes, first + 4 * word); };
  const auto pointAt = [&](int64_t word) { return wordAt(word) & 0xFFFF; };
  const auto endOf = [&](int64_t word) { return pointAt(word % 4 == 3 ? word - 2 : word + 1); };
  int broken = 0;
  for (int64_t t = 0; t < ledge.TriangleCount; ++t) {
    if ((wordAt(4 * t) & 0xFFF) != t || (wordAt(4 * t) >> 12 & 0xFFF) >= ledge.TriangleCount) ++broken;
    for (int64_t word = 4 * t + 1; word < 4 * t + 4; ++word) {
      const int32_t distance = static_cast<int32_t>(wordAt(word) << 1) >> 17;
      const int64_t other = word + distance;
      if (other < 0 || other >= 4 * ledge.TriangleCount || pointAt(other) != endOf(word) ||
          endOf(other) != pointAt(word) || static_cast<int32_t>(wordAt(other) << 1) >> 17 != -distance) {
        ++broken;
      }
    }
  }
  return broken;
}

TEST(PhyWriter, LinksEachEdgeWithTheSameEdgeOfTheNeighbour) {
  const std::string bytes = Written(BoxSolid({{{0, 0, 0}, {4, 6, 8}}}));
  EXPECT_EQ(BrokenEdges(bytes, Surface + 48), 0);
  EXPECT_EQ(BrokenEdges(Written(Corner()), Surface + 48), 0);
  // Across from each half of a box's side lies one of the two halves of the opposite side.
  for (int64_t t = 0; t < 12; ++t) {
    const uint32_t across = At<uint32_t>(bytes, Surface + 48 + 16 + 16 * t) >> 12 & 0xFFF;
    EXPECT_EQ(across / 2, static_cast<uint32_t>(t / 2 ^ 1));
  }
}

TEST(PhyWriter, PutsSeveralPiecesUnderATreeWhoseRootHasTheHull) {
  const PhySolid row = BoxSolid({{{0, 0, 0}, {4, 4, 4}}, {{8, 0, 0}, {12, 4, 4}}, {{16, 0, 0}, {20, 4, 4}}});
  const std::string bytes = Written(row, HullOfRow(row));
  const int64_t tree = At<PhySurface>(bytes, Surface).RootOffset;
  ASSERT_EQ(Surface + tree + 5 * 28, static_cast<int64_t>(bytes.size()));
  const auto root = At<PhyNode>(bytes, Surface + tree);
  const int64_t hullPlace = tree + root.LedgeOffset;
  const auto hull = At<PhyLedge>(bytes, Surface + hullPlace);
  EXPECT_EQ(hull.KindAndSize & 0xFF, PhyLedgeHull);
  EXPECT_EQ(hullPlace + hull.BoneOrNode, tree);
  EXPECT_EQ(hullPlace, 48 + 3 * (16 + 16 * 12));
  EXPECT_EQ(BrokenEdges(bytes, Surface + hullPlace), 0);
  // The two ends of the row are sides of pieces; the long sides are none.
  int realTriangles = 0;
  for (int64_t t = 0; t < hull.TriangleCount; ++t) {
    if (At<uint32_t>(bytes, Surface + hullPlace + 16 + 16 * t) >> 31 == 0) ++realTriangles;
  }
  EXPECT_EQ(realTriangles, 4);
  EXPECT_NEAR(root.Radius, std::sqrt(100.0 + 4 + 4) * 0.0254, 0.02 * 0.0254);
  // Every piece is the ledge of one leaf; the left child stands behind its parent.
  std::vector<int64_t> leaves;
  for (int64_t i = 0; i < 5; ++i) {
    const auto node = At<PhyNode>(bytes, Surface + tree + 28 * i);
    if (node.RightOffset == 0) leaves.push_back((28 * i + tree + node.LedgeOffset - 48) / (16 + 16 * 12));
    if (node.RightOffset != 0 && i > 0) {
      EXPECT_EQ(node.LedgeOffset, 0);
    }
  }
  EXPECT_THAT(leaves, testing::UnorderedElementsAre(0, 1, 2));
}

TEST(PhyWriter, StoresEachPositionOnceInTheOrderOfUse) {
  PhySolid solid = BoxSolid({{{0, 0, 0}, {4, 4, 4}}, {{4, 0, 0}, {8, 4, 4}}});
  solid.Points.push_back({9, 9, 9});  // unused
  const std::string bytes = Written(solid, HullOfRow(BoxSolid({{{0, 0, 0}, {4, 4, 4}}, {{4, 0, 0}, {8, 4, 4}}})));
  const int64_t tree = At<PhySurface>(bytes, Surface).RootOffset;
  const int64_t points = 48 + At<PhyLedge>(bytes, Surface + 48).PointOffset;
  EXPECT_EQ(tree - points, 12 * 16);
  EXPECT_EQ(At<uint32_t>(bytes, Surface + 48 + 16 + 4) & 0xFFFF, 0u);
  EXPECT_EQ(At<uint32_t>(bytes, Surface + 48 + 16 + 8) & 0xFFFF, 1u);
}

TEST(PhyWriter, RefusesWhatIsNotClosedOrTooLarge) {
  struct Case {
    PhySolid Solid;
    std::string Reason;
  };
  PhySolid open = Corner();
  open.Pieces[0].Triangles.pop_back();
  PhySolid turned = Corner();
  std::swap(turned.Pieces[0].Triangles[0][0], turned.Pieces[0].Triangles[0][1]);
  PhySolid far = Corner();
  far.Points[0].x = std::nanf("");
  PhySolid many = Corner();
  many.Pieces[0].Triangles.assign(MostPhyTriangles + 1, {0, 1, 2});
  const Case cases[] = {{open, "a piece is not closed"},
                        {turned, "a piece is not closed"},
                        {far, "a point is not finite"},
                        {many, "4097 triangles"},
                        {{}, "no piece"},
                        {BoxSolid({{}, {{5, -1, -1}, {7, 1, 1}}}), "the hull round its pieces has 0 triangles"}};
  for (const Case& bad : cases) {
    std::string reason;
    EXPECT_FALSE(WritePhySolid(bad.Solid, {}, &reason));
    EXPECT_THAT(reason, testing::HasSubstr(bad.Reason));
  }
}

}  // namespace

#include "model/convex_hull.h"

#include <gmock/gmock.h>

#include <cmath>
#include <random>
#include <set>

#include "model/phy_measures.h"
#include "model/phy_writer.h"
#include "support/phy_builder.h"

namespace {

using namespace tarnwick;
using namespace tarnwick::model;

std::set<uint16_t> CornersOf(const std::vector<PhyCorners>& triangles) {
  std::set<uint16_t> corners;
  for (const PhyCorners& triangle : triangles) corners.insert(triangle.begin(), triangle.end());
  return corners;
}

double Height(const std::vector<Vec3>& points, const PhyCorners& triangle, const Vec3& p) {
  const PhyVector n = PhyNormal({points, {}}, triangle);
  const Vec3& a = points[triangle[0]];
  return n[0] * (double{p.x} - double{a.x}) + n[1] * (double{p.y} - double{a.y}) + n[2] * (double{p.z} - double{a.z});
}

double FarthestOutside(const std::vector<Vec3>& points, const std::vector<PhyCorners>& triangles) {
  double farthest = -1;
  for (const PhyCorners& triangle : triangles) {
    for (const Vec3& p : points) farthest = std::max(farthest, Height(points, triangle, p));
  }
  return farthest;
}

/// A box of 6 x 4 x 3 with points on a grid over its sides and inside, turned round two axes.
std::vector<Vec3> DividedBox(double scale, double turn) {
  std::vector<Vec3> points;
  const double c = std::cos(turn), s = std::sin(turn);
  for (int x = 0; x <= 6; ++x) {
    for (int y = 0; y <= 4; ++y) {
      for (int z = 0; z <= 3; ++z) {
        const double u = c * x - s * y, v = s * x + c * y;
        points.push_back({static_cast<float>(scale * u), static_cast<float>(scale * (c * v - s * z)),
                          static_cast<float>(scale * (s * v + c * z))});
      }
    }
  }
  return points;
}

TEST(ConvexHull, LeavesOutWhatLiesInsideOnSidesAndOnEdges) {
  for (const double scale : {0.1, 1.0, 37.0, 900.0}) {
    for (const double turn : {0.0, 0.3, 1.1}) {
      const auto hull = ConvexHull(DividedBox(scale, turn));
      ASSERT_TRUE(hull);
      EXPECT_EQ(hull->size(), 12u) << scale << ' ' << turn;
      EXPECT_EQ(CornersOf(*hull).size(), 8u);
    }
  }
}

TEST(ConvexHull, IsClosedTurnedOutwardAndHoldsEveryPoint) {
  std::mt19937 random(7);
  std::normal_distribution<float> spread;
  for (const int count : {4, 9, 60, 900}) {
    std::vector<Vec3> points;
    for (int i = 0; i < count; ++i) points.push_back({spread(random), spread(random) * 20, spread(random) + 300});
    const auto hull = ConvexHull(points);
    ASSERT_TRUE(hull);
    const PhySolid solid{points, {{0, *hull}}};
    EXPECT_TRUE(WritePhySolid(solid, {}));
    EXPECT_GT(MeasurePhySolid(solid).CubicInches, 0);
    EXPECT_EQ(CornersOf(*hull).size(), hull->size() / 2 + 2);
    EXPECT_LT(FarthestOutside(points, *hull), 2e-4);
    EXPECT_EQ(ConvexHull(points), hull);
  }
}

TEST(ConvexHull, KeepsEveryPointOfARoundShape) {
  std::vector<Vec3> points;
  for (int i = 0; i < 24; ++i) {
    for (const float z : {-8.0f, 8.0f}) {
      points.push_back(
          {10 * std::cos(static_cast<float>(i) * 0.261799f), 10 * std::sin(static_cast<float>(i) * 0.261799f), z});
    }
  }
  points.push_back(points[0]);  // once more
  const auto hull = ConvexHull(points);
  ASSERT_TRUE(hull);
  EXPECT_EQ(CornersOf(*hull).size(), 48u);
  EXPECT_EQ(hull->size(), 92u);
}

TEST(ConvexHull, HasNoneForPointsWithoutExtent) {
  const std::vector<Vec3> flat = {{0, 0, 1}, {5, 0, 1}, {5, 5, 1}, {0, 5, 1}, {2, 2, 1.0000004f}};
  const std::vector<Vec3> line = {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {3, 3, 3}, {9, 9, 9}};
  EXPECT_FALSE(ConvexHull(flat));
  EXPECT_FALSE(ConvexHull(line));
  EXPECT_FALSE(ConvexHull(std::vector<Vec3>(6, Vec3{4, 4, 4})));
  EXPECT_FALSE(ConvexHull({}));
  EXPECT_FALSE(ConvexHull(std::vector<Vec3>{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, std::nanf("")}}));
}

TEST(ConvexHull, IsThatOfSeveralPiecesToo) {
  const PhySolid row = tests::BoxSolid({{{0, 0, 0}, {4, 4, 4}}, {{8, 1, 1}, {12, 3, 3}}});
  const auto hull = ConvexHull(row.Points);
  ASSERT_TRUE(hull);
  EXPECT_TRUE(WritePhySolid(row, *hull));
  EXPECT_EQ(CornersOf(*hull).size(), 12u);
}

}  // namespace

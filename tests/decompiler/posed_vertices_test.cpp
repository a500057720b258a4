#include "decompiler/sources/posed_vertices.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <random>
#include <vector>

namespace tarnwick::decompiler::sources {
namespace {

using core::VectorLevel;
using model::VvdVertex;

std::vector<uint32_t> BitsOf(const BoxOfPoints& box) {
  std::vector<uint32_t> bits;
  for (const float value : {box.Least.x, box.Least.y, box.Least.z, box.Most.x, box.Most.y, box.Most.z}) {
    bits.push_back(std::bit_cast<uint32_t>(value));
  }
  return bits;
}

/// What stands where it stands, but for bones past the first, which are moved along X by their numbers.
std::vector<BonePlacement> Moved(size_t count) {
  std::vector<BonePlacement> bones;
  for (size_t i = 0; i < count; ++i) {
    model::RigidTransform transform;
    transform.Move[0] = static_cast<double>(i);
    bones.push_back(BonePlacement::Of(transform, i == 1));
  }
  return bones;
}

TEST(PosedVertices, AreTakenToTheSameBoxAtEveryLevel) {
  std::mt19937 random(7);
  const auto number = [&] { return static_cast<float>(static_cast<int32_t>(random())) / 0x1p26F; };
  for (int round = 0; round < 300; ++round) {
    std::vector<BonePlacement> bones(1 + random() % 40);
    for (BonePlacement& bone : bones) {
      model::RigidTransform transform;
      for (auto& row : transform.Turn) {
        for (double& value : row) value = double{number()} / 7;
      }
      for (double& value : transform.Move) value = double{number()};
      bone = BonePlacement::Of(transform, random() % 3 == 0);
    }
    std::vector<VvdVertex> vertices(random() % 60);
    for (VvdVertex& vertex : vertices) {
      vertex = {};
      vertex.WeightCount = static_cast<uint8_t>(random() % 6);
      vertex.Position = {number(), number(), number()};
      for (int i = 0; i < 3; ++i) {
        vertex.Bones[i] = static_cast<uint8_t>(random() % 44);  // some of which are not there
        vertex.Weights[i] = number();
      }
      if (random() % 50 == 0) vertex.Position.y = std::numeric_limits<float>::quiet_NaN();
    }
    BoxOfPoints plain{{-1, -2, -3}, {1, 2, 3}}, other = plain;
    TakePosedVertices(vertices, bones, plain, VectorLevel::Plain);
    TakePosedVertices(vertices, bones, other);
    ASSERT_EQ(BitsOf(plain), BitsOf(other)) << "round " << round;
  }
}

TEST(PosedVertices, StandWhereTheirBonesBringThem) {
  const auto at = [](uint8_t first, uint8_t second, float x) {
    return VvdVertex{{0.5F, 0.5F, 0}, {first, second, 0}, 2, {x, 0, 0}, {}, 0, 0};
  };
  for (const auto level : {VectorLevel::Plain, core::HighestVectorLevel()}) {
    BoxOfPoints box;
    TakePosedVertices(std::vector{at(2, 4, 10)}, Moved(5), box, level);
    EXPECT_EQ(box.Most.x, 13);
    TakePosedVertices(std::vector{at(2, 9, 40)}, Moved(5), box, level);  // bone 9 is not there
    EXPECT_EQ(box.Most.x, 21);
    EXPECT_EQ(box.Least.x, 0);
  }
  EXPECT_TRUE(HasMoved(at(0, 1, 50), Moved(5)));
  EXPECT_FALSE(HasMoved(at(2, 4, 50), Moved(5)));
  EXPECT_FALSE(HasMoved(at(1, 0, 50), Moved(1))) << "bone 1 is not there";
}

}  // namespace
}  // namespace tarnwick::decompiler::sources

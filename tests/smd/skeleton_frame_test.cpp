#include "smd/skeleton_frame.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

namespace tarnwick::smd {
namespace {

using core::VectorLevel;

/// What the line of each bone is made of.
struct Bone {
  Triple Position, Rotation;
  bool Moves = true, Turns = true;
  ExactNumbers Exact;
};

std::string TextOf(const std::vector<std::vector<Bone>>& poses, VectorLevel level, uint64_t& odd) {
  std::string text;
  {
    core::TextWriter writer(text);
    SkeletonFrame frame(poses.front().size(), level);
    for (const auto& pose : poses) {
      frame.Begin();
      for (const Bone& bone : pose) {
        if (!bone.Moves && !bone.Turns) {
          frame.Keep();
        } else {
          frame.Line(bone.Moves ? &bone.Position : nullptr, bone.Turns ? &bone.Rotation : nullptr, bone.Exact);
        }
      }
      frame.Write(writer);
    }
    odd = writer.NonFiniteCount();
  }
  return text;
}

TEST(SkeletonFrame, WritesTheSameTextAtEveryLevel) {
  std::mt19937 random(3);
  const auto number = [&]() -> float {
    const auto any = static_cast<float>(static_cast<int32_t>(random()));
    switch (random() % 12) {
      case 0:
        return any / 0x1p20F;  // some of 999 and above
      case 1:
        return random() % 2 == 0 ? 0.0F : -0.0F;
      case 2:
        return 998.9999F + static_cast<float>(random() % 4) * 0.00007F;
      case 3:
        return random() % 8 == 0 ? std::numeric_limits<float>::quiet_NaN() : -0.0000004F;
      case 4:
        return random() % 8 == 0 ? -std::numeric_limits<float>::infinity() : 0.0000005F;
      default:
        return any / 0x1p29F;
    }
  };
  const auto triple = [&] { return Triple{number(), number(), number()}; };
  for (int round = 0; round < 200; ++round) {
    std::vector<std::vector<Bone>> poses(1 + random() % 6, std::vector<Bone>(1 + random() % 40));
    for (auto& pose : poses) {
      for (Bone& bone : pose) {
        bone = {triple(),
                triple(),
                &pose == &poses.front() || random() % 3 == 0,
                &pose == &poses.front() || random() % 2 == 0,
                {random() % 4 == 0, random() % 4 == 0}};
      }
    }
    uint64_t odd = 0, plainOdd = 0;
    const std::string plain = TextOf(poses, VectorLevel::Plain, plainOdd);
    for (int level = 1; level <= static_cast<int>(core::HighestVectorLevel()); ++level) {
      ASSERT_EQ(TextOf(poses, static_cast<VectorLevel>(level), odd), plain) << "round " << round;
      ASSERT_EQ(odd, plainOdd) << "round " << round;
    }
  }
}

TEST(SkeletonFrame, CarriesOverWhatStays) {
  const Triple place{1, 2, 3}, turn{0, -0.5F, 0.1F}, other{-9, 0, 1000};
  std::string text;
  {
    core::TextWriter writer(text);
    SkeletonFrame frame(2);
    frame.Begin();
    frame.Line(&place, &turn, {.Rotation = true});
    frame.Line(&other, &other);
    frame.Write(writer);
    frame.Begin();
    frame.Line(nullptr, &place);
    frame.Keep();
    frame.Write(writer);
  }
  const std::string end(core::PlatformLineEnd);
  const std::string second = "  1 -9.000000 0.000000 1000.000000 -9.000000 0.000000 1000.000000" + end;
  EXPECT_EQ(text, "  0 1.000000 2.000000 3.000000 0.000000 -0.500000 0.100000" + end + second +
                      "  0 1.000000 2.000000 3.000000 1.000000 2.000000 3.000000" + end + second);
}

}  // namespace
}  // namespace tarnwick::smd

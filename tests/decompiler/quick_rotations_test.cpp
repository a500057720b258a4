#include "decompiler/quick_rotations.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "decompiler/bone_math.h"

namespace tarnwick::decompiler {
namespace {

template <typename T>
bool SameBits(const T& a, const T& b) {
  return std::memcmp(&a, &b, sizeof(T)) == 0;
}

/// Counts the cases in which a quick function gives other bits than the plain one.
struct Differences {
  int Count = 0;

  void Try(const EulerAngles& e) {
    Quat plain, quick;
    EulerToQuat(e, plain);
    QuickEulerToQuat(e, quick);
    if (!SameBits(plain, quick) && ++Count < 5) ADD_FAILURE() << e.x << " " << e.y << " " << e.z;
    Try(plain);
  }
  void Try(const Quat& q) {
    EulerAngles plain, quick;
    QuatToEuler(q, plain);
    QuickQuatToEuler(q, quick);
    if (!SameBits(plain, quick) && ++Count < 5) ADD_FAILURE() << q.x << " " << q.y << " " << q.z << " " << q.w;
  }
};

TEST(QuickRotations, AgreeWithThePlainOnesForTurnsOfEveryKind) {
  std::mt19937 random(1);
  std::uniform_real_distribution<float> turn(-3.2f, 3.2f), wide(-20, 20), part(-1, 1);
  std::uniform_int_distribution<int> raw(-32768, 32767), exponent(-40, 0);
  Differences differences;
  for (int i = 0; i < 1'000'000; ++i) {
    differences.Try(EulerAngles{turn(random), turn(random), turn(random)});
    differences.Try(
        EulerAngles{std::ldexp(turn(random), exponent(random)), 0, std::ldexp(turn(random), exponent(random))});
    differences.Try(EulerAngles{wide(random), turn(random), wide(random)});
    // Run values and packed rotations as models hold them: coarse steps, not quite of unit length.
    const float step = 1.0f / 8192;
    differences.Try(EulerAngles{static_cast<float>(raw(random)) * step, static_cast<float>(raw(random)) * step, 0});
    Quat packed;
    DecodeQuat48({{static_cast<uint16_t>(raw(random)), 32768, static_cast<uint16_t>(raw(random))}}, packed);
    differences.Try(packed);
    differences.Try(Quat{part(random), part(random), std::ldexp(part(random), exponent(random)), part(random)});
  }
  EXPECT_EQ(differences.Count, 0);
}

TEST(QuickRotations, AgreeAtTheEdges) {
  constexpr float Infinity = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  std::vector<float> edges = {
      0.0f, -0.0f,           1e-45f, -1e-38f, 1e-30f,   1e-9f,     1.0f, -1.0f,
      0.5f, std::sqrt(0.5f), 1e7f,   1e30f,   Infinity, -Infinity, nan,  std::numeric_limits<float>::max()};
  for (int quarters = -5; quarters <= 5; ++quarters) {
    const auto angle = static_cast<float>(quarters * 1.5707963267948966);
    for (const float near : {angle, std::nextafter(angle, 100.0f), std::nextafter(angle, -100.0f), angle / 2}) {
      edges.push_back(near);
    }
  }
  Differences differences;
  for (const float x : edges) {
    for (const float y : edges) {
      for (const float z : edges) {
        differences.Try(EulerAngles{x, y, z});
        differences.Try(Quat{x, y, z, 1});
        differences.Try(Quat{0, z, x, y});
      }
    }
  }
  EXPECT_EQ(differences.Count, 0);
}

}  // namespace
}  // namespace tarnwick::decompiler

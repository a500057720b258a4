#include "model/quick_rotations.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "model/bone_math.h"

namespace tarnwick::model {
namespace {

template <typename T>
bool SameBits(const T& a, const T& b) {
  return std::memcmp(&a, &b, sizeof(T)) == 0;
}

/// Gathers rotations, and compares what the quick functions give for all of them at a time with the plain functions.
struct Comparison {
  std::vector<EulerAngles> Angles;
  std::vector<Quat> Rotations;

  void Try(const EulerAngles& e) { Angles.push_back(e); }
  void Try(const Quat& q) { Rotations.push_back(q); }

  /// At every level of vector code that this machine has.
  int Differences() {
    std::vector<Quat> quats(Angles.size());
    for (size_t i = 0; i < Angles.size(); ++i) EulerToQuat(Angles[i], quats[i]);
    Rotations.insert(Rotations.end(), quats.begin(), quats.end());
    std::vector<EulerAngles> angles(Rotations.size());
    for (size_t i = 0; i < Rotations.size(); ++i) QuatToEuler(Rotations[i], angles[i]);

    int count = 0;
    for (const auto level : {core::VectorLevel::Plain, core::VectorLevel::Avx2, core::VectorLevel::Avx512}) {
      if (!core::HasVectors(level)) continue;
      std::vector<Quat> quickQuats(quats.size());
      QuickEulerToQuat(Angles, quickQuats, level);
      count += CountDifferences(quats, quickQuats);
      std::vector<EulerAngles> quickAngles(angles.size());
      QuickQuatToEuler(Rotations, quickAngles, level);
      count += CountDifferences(angles, quickAngles);
    }
    return count;
  }

 private:
  template <typename T>
  static int CountDifferences(const std::vector<T>& plain, const std::vector<T>& quick) {
    int count = 0;
    for (size_t i = 0; i < plain.size(); ++i) count += !SameBits(plain[i], quick[i]);
    return count;
  }
};

TEST(QuickRotations, AgreeWithThePlainOnesForTurnsOfEveryKind) {
  std::mt19937 random(1);
  std::uniform_real_distribution<float> turn(-3.2f, 3.2f), wide(-20, 20), part(-1, 1);
  std::uniform_int_distribution<int> raw(-32768, 32767), exponent(-40, 0);
  Comparison comparison;
  for (int i = 0; i < 1'000'000; ++i) {
    comparison.Try(EulerAngles{turn(random), turn(random), turn(random)});
    comparison.Try(
        EulerAngles{std::ldexp(turn(random), exponent(random)), 0, std::ldexp(turn(random), exponent(random))});
    comparison.Try(EulerAngles{wide(random), turn(random), wide(random)});
    // Run values and packed rotations as models hold them: coarse steps, not quite of unit length.
    const float step = 1.0f / 8192;
    comparison.Try(EulerAngles{static_cast<float>(raw(random)) * step, static_cast<float>(raw(random)) * step, 0});
    Quat packed;
    DecodeQuat48({{static_cast<uint16_t>(raw(random)), 32768, static_cast<uint16_t>(raw(random))}}, packed);
    comparison.Try(packed);
    comparison.Try(Quat{part(random), part(random), std::ldexp(part(random), exponent(random)), part(random)});
  }
  EXPECT_EQ(comparison.Differences(), 0);
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
  Comparison comparison;
  for (const float x : edges) {
    for (const float y : edges) {
      for (const float z : edges) {
        comparison.Try(EulerAngles{x, y, z});
        comparison.Try(Quat{x, y, z, 1});
        comparison.Try(Quat{0, z, x, y});
      }
    }
  }
  EXPECT_EQ(comparison.Differences(), 0);
}

}  // namespace
}  // namespace tarnwick::model

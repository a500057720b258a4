#include "model/bone_math.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>

#include "model/rotation_packing.h"

namespace tarnwick::model {
namespace {

std::string Text(std::initializer_list<float> values) {
  std::string text;
  char number[64];
  for (const float value : values) {
    std::snprintf(number, sizeof number, "%s%.9g", text.empty() ? "" : " ", static_cast<double>(value));
    text += number;
  }
  return text;
}

std::string Text(const Quat& q) {
  return Text({q.x, q.y, q.z, q.w});
}
std::string Text(const EulerAngles& e) {
  return Text({e.x, e.y, e.z});
}
std::string Text(const Vec3& v) {
  return Text({v.x, v.y, v.z});
}
std::string Text(const PitchYawRoll& a) {
  return Text({a.Pitch, a.Yaw, a.Roll});
}

/// A quarter turn about Z, with a translation.
constexpr Matrix3x4 QuarterTurn = {{0, -1, 0, 1, 1, 0, 0, 2, 0, 0, 1, 3}};

void ExpectNear(const Matrix3x4& got, const Matrix3x4& expected) {
  for (int i = 0; i < 12; ++i) EXPECT_NEAR(got.m[i], expected.m[i], 1e-6) << "element " << i;
}

TEST(BoneMath, BuildsMatricesFromAngles) {
  // Yaw turns about Z, pitch about Y, roll about X; roll comes first.
  Matrix3x4 m;
  AnglesPosToMatrix({0, 90, 0}, {1, 2, 3}, m);
  ExpectNear(m, QuarterTurn);
  AnglesToMatrix({90, 0, 0}, m);
  ExpectNear(m, {{0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, 0}});
  AnglesToMatrix({0, 90, 90}, m);
  ExpectNear(m, {{0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0}});
  // 270 degrees less what the stored factor lacks: the cosine is not 0.
  AnglesToMatrix({0, 270, 0}, m);
  EXPECT_EQ(Text({m(0, 0), m(0, 1), m(1, 0), m(1, 1)}), "-3.6503895e-08 1 -1 -3.6503895e-08");
}

TEST(BoneMath, BuildsMatricesFromQuaternionsAsTheyAre) {
  const float half = std::sqrt(0.5f);
  Matrix3x4 m;
  QuatPosToMatrix({0, 0, half, half}, {1, 2, 3}, m);
  ExpectNear(m, QuarterTurn);
  // Of twice the unit length: nothing is normalised.
  QuatToMatrix({0, 2, 0, 0}, m);
  ExpectNear(m, {{-7, 0, 0, 0, 0, 1, 0, 0, 0, 0, -7, 0}});
  QuatToMatrix({0.5f, 0.25f, 2, 1}, m);
  ExpectNear(m, {{-7.125f, -3.75f, 2.5f, 0, 4.25f, -7.5f, 0, 0, 1.5f, 2, 0.375f, 0}});
}

TEST(BoneMath, TakesAQuaternionByTheLargestPartOfTheMatrix) {
  const float half = std::sqrt(0.5f);
  const Quat turns[] = {{0, 0, 0, 1}, {half, 0, 0, half}, {1, 0, 0, 0},       {0, 1, 0, 0},
                        {0, 0, 1, 0}, {0.8f, 0.6f, 0, 0}, {0, 0.8f, 0.6f, 0}, {0.6f, 0, 0.8f, 0}};
  for (const Quat& turn : turns) {
    Matrix3x4 m;
    QuatPosToMatrix(turn, {7, 8, 9}, m);
    Quat q;
    Vec3 p;
    MatrixToQuatPos(m, q, p);
    EXPECT_EQ(Text(p), "7 8 9");
    EXPECT_NEAR(q.x * turn.x + q.y * turn.y + q.z * turn.z + q.w * turn.w, 1, 1e-6) << Text(turn);
  }
}

TEST(BoneMath, TakesAnglesByWayOfDegrees) {
  PitchYawRoll a;
  MatrixToAngles(QuarterTurn, a);
  // pi/2 times the stored factor, which is not 180/pi.
  EXPECT_EQ(Text(a), "-0 89.9999924 0");
  EulerAngles e;
  MatrixToEuler(QuarterTurn, e);
  EXPECT_EQ(Text(e), "0 -0 1.57079613");

  // The X axis along -Z: all that is left is a turn about Z, which is read from the Y axis.
  MatrixToAngles({{0, 0.6f, 0.8f, 0, 0, 0.8f, -0.6f, 0, -1, 0, 0, 0}}, a);
  EXPECT_EQ(a.Roll, 0);
  EXPECT_NEAR(a.Pitch, 90, 1e-4);
  EXPECT_NEAR(a.Yaw, -36.86989, 1e-4);
  // Just beyond the threshold roll counts again.
  MatrixToAngles({{0.0011f, 0.6f, 0.8f, 0, 0, 0.8f, -0.6f, 0, -1, 0.5f, 0.5f, 0}}, a);
  EXPECT_NEAR(a.Roll, 45, 1e-4);
  EXPECT_EQ(a.Yaw, 0);
}

TEST(BoneMath, TurnsAnglesIntoQuaternionsAndBack) {
  Quat q;
  EulerToQuat({0, 0, 0}, q);
  EXPECT_EQ(Text(q), "0 0 0 1");
  // Roll, pitch and yaw of 60, 40 and 20 degrees, by the product of three turns worked out elsewhere.
  EulerToQuat({1.04719755f, 0.698131701f, 0.34906585f}, q);
  EXPECT_NEAR(q.x, 0.4112740, 1e-6);
  EXPECT_NEAR(q.y, 0.3732862, 1e-6);
  EXPECT_NEAR(q.z, -0.0270976, 1e-6);
  EXPECT_NEAR(q.w, 0.8311299, 1e-6);
  EulerAngles e;
  QuatToEuler(q, e);
  EXPECT_NEAR(e.x, 1.04719755, 1e-6);
  EXPECT_NEAR(e.y, 0.698131701, 1e-6);
  EXPECT_NEAR(e.z, 0.34906585, 1e-6);
}

TEST(BoneMath, NormalizesAndAlignsQuaternions) {
  Quat q{1, 2, 2, 4};
  NormalizeQuat(q);
  EXPECT_EQ(Text(q), "0.200000003 0.400000006 0.400000006 0.800000012");
  Quat zero{0, 0, 0, 0};
  NormalizeQuat(zero);
  EXPECT_EQ(Text(zero), "0 0 0 0");

  const Quat p{0.5f, 0.5f, 0.5f, 0.5f}, opposite{-0.5f, -0.5f, -0.5f, -0.5f}, across{0.5f, -0.5f, 0.5f, -0.5f};
  Quat result;
  AlignQuat(p, p, result);
  EXPECT_EQ(Text(result), Text(p));
  AlignQuat(p, across, result);
  EXPECT_EQ(Text(result), Text(across));
  result = opposite;
  AlignQuat(p, result, result);
  EXPECT_EQ(Text(result), Text(p));
}

TEST(BoneMath, MultipliesMatricesInPlace) {
  const Matrix3x4 a = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}}, b = {{2, 0, 1, 3, 1, 1, 0, 2, 0, 4, 1, 1}};
  const Matrix3x4 expected = {{4, 14, 4, 14, 16, 34, 12, 42, 28, 54, 20, 70}};
  Matrix3x4 result, left = a, right = b;
  ConcatMatrix(a, b, result);
  ConcatMatrix(left, b, left);
  ConcatMatrix(a, right, right);
  for (const Matrix3x4& m : {result, left, right}) {
    for (int i = 0; i < 12; ++i) EXPECT_EQ(m.m[i], expected.m[i]) << "element " << i;
  }
  Vec3 out;
  InverseTransformPoint({3, 4, 5}, QuarterTurn, out);
  EXPECT_EQ(Text(out), "2 -2 2");
  // Sums are formed wider than they are stored.
  ConcatMatrix({{1e8f, 1, -1e8f, 0, 0, 0, 0, 0, 0, 0, 0, 0}}, {{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}}, result);
  EXPECT_EQ(result(0, 0), 1);
}

TEST(BoneMath, UnpacksRotations) {
  Quat q;
  DecodeQuat48({{32768, 32768, 16384}}, q);
  EXPECT_EQ(Text(q), "0 0 0 1");
  DecodeQuat48({{32768, 32768, 16384 | 0x8000}}, q);
  EXPECT_EQ(Text(q), "0 0 0 -1");
  DecodeQuat48({{0x4000, 0xC000, 0x6000}}, q);
  EXPECT_EQ(Text(q), "-0.5 0.5 0.5 0.5");
  DecodeQuat48({{0, 0, 0}}, q);
  EXPECT_TRUE(std::isnan(q.w));

  const auto pack64 = [](uint64_t x, uint64_t y, uint64_t z, uint64_t sign) {
    return PackedQuat64{x | y << 21 | z << 42 | sign << 63};
  };
  DecodeQuat64(pack64(1048576, 1048576, 1048576, 1), q);
  EXPECT_EQ(Text(q), "0 0 0 -1");
  DecodeQuat64(pack64(1048576 + 524288, 1048576, 1048576 - 524288, 0), q);
  EXPECT_EQ(Text(q), "0.499999762 0 -0.499999762 0.707107127");
  DecodeQuat64(pack64(0, 0, 0, 0), q);
  EXPECT_TRUE(std::isnan(q.w));
}

TEST(BoneMath, PacksRotationsAsTheyWereTypedOrRead) {
  const auto parts = [](const PackedQuat64& packed) {
    std::string text;
    for (int shift : {0, 21, 42}) {
      text += std::to_string(static_cast<int64_t>(packed.Bits >> shift & 0x1FFFFF) - 1048576) + ' ';
    }
    return text + std::to_string(packed.Bits >> 63);
  };
  // What published models hold for angles of six decimals in their sources: a quarter turn, that of a person's pelvis.
  constexpr float Quarter = 1.57079632679f;
  EXPECT_EQ(parts(PackQuat64({0, 0, Quarter})), "0 0 741455 0");
  EXPECT_EQ(parts(PackQuat64({-1.641951f, 0, Quarter - 2e-6f})), "-542605 -542604 505306 0");
  const PackedQuat48 quarter = PackQuat48({0, 0, Quarter});
  EXPECT_EQ(quarter.Words[0], 32768);
  EXPECT_EQ(quarter.Words[2], 16384 + 11585);

  // Angles that were read come back to the bit; typed ones are found again where the file has no more of them.
  std::mt19937_64 random(5);
  std::uniform_real_distribution<float> any(-1.5f, 1.5f);
  int back = 0;
  for (int i = 0; i < 500; ++i) {
    const EulerAngles typed = {std::round(any(random) * 1e6f) / 1e6f, std::round(any(random) * 1e6f) / 1e6f,
                               std::round(any(random) * 1e6f) / 1e6f};
    const PackedQuat64 packed = PackQuat64(typed);
    Quat q;
    DecodeQuat64(packed, q);
    EulerAngles read;
    QuatToEulerNear(q, typed, read);
    EXPECT_EQ(PackQuat64(read).Bits, packed.Bits) << Text(typed);
    const auto found = TypedAngles(q, read, typed, 0);
    if (!found) continue;  // hardly any lie on the edge between two packed ones
    ++back;
    EXPECT_EQ(PackQuat64(*found).Bits, packed.Bits) << Text(typed);
  }
  EXPECT_GT(back, 300);
  Quat q;
  DecodeQuat64(PackQuat64({0, 0, Quarter}), q);
  const auto still = TypedAngles(q, {3e-7f, 0, -1.588e-6f}, {0.5f, 0, 0}, Quarter);
  ASSERT_TRUE(still);
  EXPECT_EQ(Text(*still), "0 0 0");
  EXPECT_FALSE(TypedAngles(q, {0, 0, 0.3f}, {0, 0, 0.3f}, Quarter));
}

TEST(BoneMath, UnpacksHalfFloats) {
  Vec3 v;
  DecodeVec48({{0x3C00, 0xC000, 0x0001}}, v);
  EXPECT_EQ(Text(v), "1 -2 5.96046448e-08");
  DecodeVec48({{0x7C00, 0xFC00, 0x7C01}}, v);
  EXPECT_EQ(Text(v), "65504 -65504 0");
  DecodeVec48({{0x8000, 0x0000, 0x83FF}}, v);
  EXPECT_EQ(Text(v), "-0 0 -6.09755516e-05");
  DecodeVec48({{0x7BFF, 0x0400, 0x3555}}, v);
  EXPECT_EQ(Text(v), "65504 6.10351562e-05 0.333251953");
}

TEST(BoneMath, GivesTheAnglesNearestToOthersAlsoStraightUp) {
  const EulerAngles cases[] = {{0.3f, 0.2f, -0.4f},    {2.9f, 1.5705f, -2.5f}, {-0.7f, 1.5712f, 1.1f},
                               {1.0f, -1.5709f, 4.0f}, {0.5f, 3.1f, -0.2f},    {1.2f, 1.5707963f, 0.4f}};
  for (const EulerAngles& wanted : cases) {
    SCOPED_TRACE(Text(wanted));
    Quat q;
    EulerToQuat(wanted, q);
    const EulerAngles near = {wanted.x + 0.1f, wanted.y - 0.01f, wanted.z + 0.1f};
    EulerAngles found;
    QuatToEulerNear(q, near, found);
    Quat again;
    EulerToQuat(found, again);
    const double dot = double{q.x} * again.x + double{q.y} * again.y + double{q.z} * again.z + double{q.w} * again.w;
    EXPECT_NEAR(std::abs(dot), 1, 1e-6);
    // Where it points straight up the sum of X and Z is free, their difference is not.
    EXPECT_NEAR(found.x - found.z, wanted.x - wanted.z, 1e-2);
    EXPECT_NEAR(found.y, wanted.y, 1e-5);
  }
}

}  // namespace
}  // namespace tarnwick::model

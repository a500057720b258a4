#include "decompiler/quick_rotations.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include "decompiler/bone_math.h"

namespace tarnwick::decompiler {

namespace {

// The tables' points lie 1/64 apart, so a series has an argument of at most 1/128 (1/127 for the arctangent's rounded
// quotient) and needs few terms. Series: Abramowitz & Stegun, Handbook of Mathematical Functions, 4.3.65, 4.3.66,
// 4.4.42. Table entries are made by longer series when this file is compiled.
constexpr int PointsPerUnit = 64;

struct SinCos {
  double Sin, Cos;
};

constexpr SinCos SinCosSeries(long double x) {
  long double sine = 0, cosine = 0, term = 1;
  for (int n = 0; n < 30; ++n) {
    const bool negative = n % 4 >= 2;
    (n % 2 == 0 ? cosine : sine) += negative ? -term : term;
    term *= x / (n + 1);
  }
  return {static_cast<double>(sine), static_cast<double>(cosine)};
}

/// Euler's series for the arctangent, whose terms shrink by half at least for arguments up to 1.
constexpr double AtanSeries(long double x) {
  long double term = x / (1 + x * x), sum = 0;
  for (int n = 1; n < 90; ++n) {
    sum += term;
    term *= x * x / (1 + x * x) * (2 * n) / (2 * n + 1);
  }
  return static_cast<double>(sum);
}

/// Sine and cosine up to pi/4.
constexpr auto SinCosTable = [] {
  std::array<SinCos, 52> table{};
  for (size_t i = 0; i < table.size(); ++i) table[i] = SinCosSeries(static_cast<long double>(i) / PointsPerUnit);
  return table;
}();

/// The arctangent up to 1.
constexpr auto AtanTable = [] {
  std::array<double, PointsPerUnit + 1> table{};
  for (size_t i = 0; i < table.size(); ++i) table[i] = AtanSeries(static_cast<long double>(i) / PointsPerUnit);
  return table;
}();

constexpr double Pi = 3.141592653589793;
constexpr double HalfPi = 1.5707963267948966;
// pi/2 in two parts. The first has 33 bits, so a small multiple of it is exact.
constexpr double HalfPiHigh = 0x1.921fb544p+0;
constexpr double HalfPiLow = 0x1.0b4611a626331p-34;

// Bounds on the relative error, as powers of two. Ours and the library's own roundings add up to a few units of 2^-53.
constexpr int SingleError = -48;    // of one function's value, or of the product of two
constexpr int BalancedError = -40;  // of a sum in which at most 8 bits cancel

/// Whether every value within 2^Error (relative) of `value` is stored as the same float. `value` is 0, or of ordinary
/// size for a float: the bits that a float lacks are then the lowest 29.
template <int Error>
bool RoundsSurely(double value) {
  constexpr uint64_t Lost = (uint64_t{1} << 29) - 1;
  constexpr uint64_t Middle = uint64_t{1} << 28;
  constexpr uint64_t Margin = uint64_t{1} << (53 + Error);
  return (std::bit_cast<uint64_t>(value) & Lost) - (Middle - Margin) > 2 * Margin;
}

/// atan2(y, x) in degrees, rounded to a float; false if that is not sure. `y` and `x` are floats.
bool QuickDegrees(double y, double x, float& degrees) {
  const double ay = std::fabs(y), ax = std::fabs(x);
  const bool steep = ay > ax;
  const double a = steep ? ax : ay, b = steep ? ay : ax;
  // Also refuses not-a-numbers, which no comparison holds for.
  if (!(b <= 1e6 && b >= 1e-20 && (a >= 1e-25 || a == 0))) return false;
  const auto point = static_cast<int>(static_cast<float>(a) / static_cast<float>(b) * PointsPerUnit + 0.5f);
  const double c = point * (1.0 / PointsPerUnit);
  // atan(a/b) = atan(c) + atan((a/b - c) / (1 + c a/b))
  const double t = (a - c * b) / (b + c * a);
  const double s = t * t;
  double angle = AtanTable[static_cast<size_t>(point)] + (t - t * s * (1.0 / 3 - s * (1.0 / 5 - s * (1.0 / 7))));
  if (steep) angle = HalfPi - angle;
  if (x < 0) angle = Pi - angle;
  const double value = std::copysign(angle, y) * RadiansToDegrees;
  degrees = static_cast<float>(value);
  return RoundsSurely<SingleError>(value);
}

/// Sine and cosine of `x`; false for an angle that is too large, or too small for products of sines to be ordinary
/// floats.
bool QuickSinCos(double x, SinCos& result) {
  const double size = std::fabs(x);
  if (!(size <= 6 && (size >= 1e-9 || size == 0))) return false;
  const auto quarter = static_cast<int>(x * (1 / HalfPi) + std::copysign(0.5, x));
  const double rest = (x - quarter * HalfPiHigh) - quarter * HalfPiLow;
  const double magnitude = std::fabs(rest);
  const auto point = static_cast<int>(magnitude * PointsPerUnit + 0.5);
  const SinCos& near = SinCosTable[static_cast<size_t>(point)];
  const double t = magnitude - point * (1.0 / PointsPerUnit);
  const double s = t * t;
  const double sine = t - t * s * (1.0 / 6 - s * (1.0 / 120 - s * (1.0 / 5040)));
  const double cosineLess1 = -s * (1.0 / 2 - s * (1.0 / 24 - s * (1.0 / 720)));
  const double sinRest = std::copysign(near.Sin + (near.Sin * cosineLess1 + near.Cos * sine), rest);
  const double cosRest = near.Cos + (near.Cos * cosineLess1 - near.Sin * sine);
  const bool odd = (quarter & 1) != 0;
  const double sinSize = odd ? cosRest : sinRest;
  const double cosSize = odd ? sinRest : cosRest;
  result.Sin = (quarter & 2) != 0 ? -sinSize : sinSize;
  result.Cos = ((quarter + 1) & 2) != 0 ? -cosSize : cosSize;
  return true;
}

/// Whether `left` + `right` is stored surely, given that each is right to SingleError.
bool SumRoundsSurely(double left, double right) {
  const double sum = left + right;
  return std::fabs(sum) * 256 >= std::fabs(left) + std::fabs(right) && RoundsSurely<BalancedError>(sum);
}

bool TryEulerToQuat(const EulerAngles& e, Quat& result) {
  SinCos r, p, y;
  if (!QuickSinCos(e.x * 0.5, r) || !QuickSinCos(e.y * 0.5, p) || !QuickSinCos(e.z * 0.5, y)) return false;
  const double products[4] = {r.Sin * p.Cos, r.Cos * p.Sin, r.Cos * p.Cos, r.Sin * p.Sin};
  bool sure = true;
  for (const double product : products) sure &= RoundsSurely<SingleError>(product);
  const double a = static_cast<float>(products[0]), b = static_cast<float>(products[1]);
  const double c = static_cast<float>(products[2]), d = static_cast<float>(products[3]);
  const double terms[4][2] = {
      {a * y.Cos, -(b * y.Sin)}, {b * y.Cos, a * y.Sin}, {c * y.Sin, -(d * y.Cos)}, {c * y.Cos, d * y.Sin}};
  for (const auto& [left, right] : terms) sure &= SumRoundsSurely(left, right);
  result = {static_cast<float>(terms[0][0] + terms[0][1]), static_cast<float>(terms[1][0] + terms[1][1]),
            static_cast<float>(terms[2][0] + terms[2][1]), static_cast<float>(terms[3][0] + terms[3][1])};
  return sure;
}

}  // namespace

void QuickQuatToEuler(const Quat& q, EulerAngles& result) {
  Matrix3x4 m;
  QuatToMatrix(q, m);
  const double fx = m(0, 0), fy = m(1, 0), fz = m(2, 0);
  const auto d = static_cast<float>(std::sqrt(fx * fx + fy * fy));
  float roll, pitch, yaw;
  // A d this large is far above the length at which MatrixToAngles takes another way.
  if (d > 0.01f && QuickDegrees(m(2, 1), m(2, 2), roll) && QuickDegrees(-fz, d, pitch) && QuickDegrees(fy, fx, yaw)) {
    result = {static_cast<float>(roll * DegreesToRadians), static_cast<float>(pitch * DegreesToRadians),
              static_cast<float>(yaw * DegreesToRadians)};
  } else {
    QuatToEuler(q, result);
  }
}

void QuickEulerToQuat(const EulerAngles& e, Quat& result) {
  if (!TryEulerToQuat(e, result)) EulerToQuat(e, result);
}

}  // namespace tarnwick::decompiler

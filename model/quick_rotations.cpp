#include "model/quick_rotations.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "model/bone_math.h"

// The loops over lanes have no branches, so that the compiler makes vector code of them; core/vector_code.h tells how.

namespace tarnwick::model {

namespace {

constexpr size_t Lanes = 8;
/// Rotations that are brought into lanes before the first are turned: the processor turns some of them side by side,
/// and what was written number by number has left it before it is read as a whole.
constexpr size_t MostGroups = 8;

struct EulerLanes {
  float X[Lanes], Y[Lanes], Z[Lanes];
};
struct QuatLanes {
  float X[Lanes], Y[Lanes], Z[Lanes], W[Lanes];
};
/// Not 0 in the lanes whose result the plain function must give.
struct DoubtLanes {
  float Value[Lanes];
};

struct SinCos {
  double Sin, Cos;
};

constexpr double Pi = 3.141592653589793;
constexpr double HalfPi = 1.5707963267948966;
// pi/2 in two parts. The first has 33 bits, so a small multiple of it is exact.
constexpr double HalfPiHigh = 0x1.921fb544p+0;
constexpr double HalfPiLow = 0x1.0b4611a626331p-34;

// Bounds on the relative error. The series' errors, ours and the library's own roundings add up to less than 2^-49.
constexpr double SingleError = 0x1p-47;    // of one function's value, or of the product of two
constexpr double BalancedError = 0x1p-39;  // of a sum in which at most 8 bits cancel

/// Adding it to a small number rounds that to a whole number, which then stands in the lowest bits.
constexpr double Shifter = 0x1.8p52;

/// A polynomial of `x`, the coefficient of the lowest power first.
template <size_t Count>
TARNWICK_INLINE double Polynomial(const double (&coefficients)[Count], double x) {
  double sum = coefficients[Count - 1];
  for (size_t i = Count - 1; i-- > 0;) sum = sum * x + coefficients[i];
  return sum;
}

// The series interpolate at Chebyshev nodes (Abramowitz & Stegun, Handbook of Mathematical Functions, 25.2, 22.16);
// their relative errors are at most 2^-55.4 (sine), 2^-59.4 (cosine) and 2^-52.7 (arctangent).

/// (sin(x) / x - 1) / x^2 as a polynomial of x^2, for x up to pi/4.
constexpr double SineSeries[] = {-0x1.5555555555555p-3, 0x1.1111111110bb2p-7,   -0x1.a01a019e83aa2p-13,
                                 0x1.71de379689090p-19, -0x1.ae600b01a40ccp-26, 0x1.5e0b1995f429ap-33};
/// (cos(x) - 1 + x^2 / 2) / x^4, likewise.
constexpr double CosineSeries[] = {0x1.5555555555555p-5,   -0x1.6c16c16c16967p-10, 0x1.a01a019f4eafap-16,
                                   -0x1.27e4fa17d9864p-22, 0x1.1eeb68e8b2372p-29,  -0x1.907da304ce77bp-37};
/// (atan(x) / x - 1) / x^2, likewise, for x up to tan(pi/8).
constexpr double ArctangentSeries[] = {
    -0x1.5555555555546p-2, 0x1.9999999990a9fp-3,  -0x1.2492491dd4ac6p-3, 0x1.c71c6dd1c709ap-4,  -0x1.745c7f83bd05ep-4,
    0x1.3b068ef5338d6p-4,  -0x1.105e408d1e279p-4, 0x1.d5eb9735a2e2dp-5,  -0x1.6f464b98d5578p-5, 0x1.74be7fd7bcc3ap-6};
constexpr double TanEighthPi = 0.41421356237309503;

TARNWICK_INLINE uint64_t Bits(double value) {
  return std::bit_cast<uint64_t>(value);
}

/// `value` as a float; `doubt` is raised if not every value within `error` (relative) is stored as the same float.
TARNWICK_INLINE float Round(double value, double error, float& doubt) {
  const auto low = static_cast<float>(value * (1 - error)), high = static_cast<float>(value * (1 + error));
  doubt += low == high ? 0.0f : 1.0f;  // also for not-a-numbers
  return high;
}

/// left + right, each of which is right to SingleError.
TARNWICK_INLINE float RoundSum(double left, double right, float& doubt) {
  const double sum = left + right;
  doubt += std::fabs(sum) * 256 >= std::fabs(left) + std::fabs(right) ? 0.0f : 1.0f;
  return Round(sum, BalancedError, doubt);
}

/// For |x| up to 6.
TARNWICK_INLINE SinCos SinCosOf(double x, float& doubt) {
  doubt += std::fabs(x) <= 6 ? 0.0f : 1.0f;
  const double shifted = x * (1 / HalfPi) + Shifter;
  const uint64_t quarter = Bits(shifted);
  const double k = shifted - Shifter;
  const double rest = (x - k * HalfPiHigh) - k * HalfPiLow;
  const double s = rest * rest;
  // The sign of a zero survives only in a product.
  const uint64_t sine = Bits(rest * (1 + s * Polynomial(SineSeries, s)));
  const uint64_t cosine = Bits(1 - s * (0.5 - s * Polynomial(CosineSeries, s)));
  const uint64_t odd = 0 - (quarter & 1);
  const uint64_t sinSize = (sine & ~odd) | (cosine & odd);
  const uint64_t cosSize = (cosine & ~odd) | (sine & odd);
  return {std::bit_cast<double>(sinSize ^ (quarter & 2) << 62),
          std::bit_cast<double>(cosSize ^ ((quarter + 1) & 2) << 62)};
}

/// atan2(y, x) in degrees. `y` and `x` are floats.
TARNWICK_INLINE float Degrees(double y, double x, float& doubt) {
  const double ay = std::fabs(y), ax = std::fabs(x);
  const bool steep = ay > ax;
  const double a = steep ? ax : ay, b = steep ? ay : ax;
  doubt += b > 0 && b <= std::numeric_limits<float>::max() ? 0.0f : 1.0f;
  // atan(a/b) = pi/4 + atan((a - b) / (a + b))
  const bool near = a > b * TanEighthPi;
  const double t = (near ? a - b : a) / (near ? a + b : b);
  const double s = t * t;
  double angle = t * (1 + s * Polynomial(ArctangentSeries, s)) + (near ? Pi / 4 : 0.0);
  angle = steep ? HalfPi - angle : angle;
  angle = x < 0 ? Pi - angle : angle;
  return Round(std::copysign(angle, y) * RadiansToDegrees, SingleError, doubt);
}

TARNWICK_INLINE void EulerToQuatLanes(const EulerLanes& __restrict e, QuatLanes& __restrict q,
                                      DoubtLanes& __restrict doubts) {
  for (size_t i = 0; i < Lanes; ++i) {
    float doubt = 0;
    const SinCos r = SinCosOf(e.X[i] * 0.5, doubt);
    const SinCos p = SinCosOf(e.Y[i] * 0.5, doubt);
    const SinCos y = SinCosOf(e.Z[i] * 0.5, doubt);
    const double a = Round(r.Sin * p.Cos, SingleError, doubt), b = Round(r.Cos * p.Sin, SingleError, doubt);
    const double c = Round(r.Cos * p.Cos, SingleError, doubt), d = Round(r.Sin * p.Sin, SingleError, doubt);
    q.X[i] = RoundSum(a * y.Cos, -(b * y.Sin), doubt);
    q.Y[i] = RoundSum(b * y.Cos, a * y.Sin, doubt);
    q.Z[i] = RoundSum(c * y.Sin, -(d * y.Cos), doubt);
    q.W[i] = RoundSum(c * y.Cos, d * y.Sin, doubt);
    doubts.Value[i] = doubt;
  }
}

TARNWICK_INLINE void QuatToEulerLanes(const QuatLanes& __restrict q, EulerLanes& __restrict e,
                                      DoubtLanes& __restrict doubts) {
  for (size_t i = 0; i < Lanes; ++i) {
    float doubt = 0;
    const double x = q.X[i], y = q.Y[i], z = q.Z[i], w = q.W[i];
    // As QuatToMatrix and MatrixToAngles form them. A product of two floats is exact, so it does not matter whether
    // a sum takes it rounded or not.
    const auto m00 = static_cast<float>(1 - 2 * y * y - 2 * z * z), m10 = static_cast<float>(2 * x * y + 2 * w * z);
    const auto m20 = static_cast<float>(2 * x * z - 2 * w * y), m21 = static_cast<float>(2 * y * z + 2 * w * x);
    const auto m22 = static_cast<float>(1 - 2 * x * x - 2 * y * y);
    const double fx = m00, fy = m10;
    const auto d = static_cast<float>(std::sqrt(fx * fx + fy * fy));
    // Far above the length at which MatrixToAngles takes another way.
    doubt += d > 0.01f ? 0.0f : 1.0f;
    e.X[i] = static_cast<float>(Degrees(m21, m22, doubt) * DegreesToRadians);
    e.Y[i] = static_cast<float>(Degrees(-double{m20}, d, doubt) * DegreesToRadians);
    e.Z[i] = static_cast<float>(Degrees(fy, fx, doubt) * DegreesToRadians);
    doubts.Value[i] = doubt;
  }
}

void EulerToQuatPlain(const EulerLanes* e, QuatLanes* q, DoubtLanes* doubts, size_t groups) {
  for (size_t i = 0; i < groups; ++i) EulerToQuatLanes(e[i], q[i], doubts[i]);
}
TARNWICK_AVX2 void EulerToQuatAvx2(const EulerLanes* e, QuatLanes* q, DoubtLanes* doubts, size_t groups) {
  for (size_t i = 0; i < groups; ++i) EulerToQuatLanes(e[i], q[i], doubts[i]);
}
TARNWICK_AVX512 void EulerToQuatAvx512(const EulerLanes* e, QuatLanes* q, DoubtLanes* doubts, size_t groups) {
  for (size_t i = 0; i < groups; ++i) EulerToQuatLanes(e[i], q[i], doubts[i]);
}

void QuatToEulerPlain(const QuatLanes* q, EulerLanes* e, DoubtLanes* doubts, size_t groups) {
  for (size_t i = 0; i < groups; ++i) QuatToEulerLanes(q[i], e[i], doubts[i]);
}
TARNWICK_AVX2 void QuatToEulerAvx2(const QuatLanes* q, EulerLanes* e, DoubtLanes* doubts, size_t groups) {
  for (size_t i = 0; i < groups; ++i) QuatToEulerLanes(q[i], e[i], doubts[i]);
}
TARNWICK_AVX512 void QuatToEulerAvx512(const QuatLanes* q, EulerLanes* e, DoubtLanes* doubts, size_t groups) {
  for (size_t i = 0; i < groups; ++i) QuatToEulerLanes(q[i], e[i], doubts[i]);
}

/// The form of a function for `level`.
template <typename Function>
Function* Pick(core::VectorLevel level, Function* plain, Function* avx2, Function* avx512) {
  if (level >= core::VectorLevel::Avx512) return avx512;
  return level >= core::VectorLevel::Avx2 ? avx2 : plain;
}

void Put(EulerLanes& lanes, size_t lane, const EulerAngles& angles) {
  lanes.X[lane] = angles.x, lanes.Y[lane] = angles.y, lanes.Z[lane] = angles.z;
}
void Put(QuatLanes& lanes, size_t lane, const Quat& rotation) {
  lanes.X[lane] = rotation.x, lanes.Y[lane] = rotation.y, lanes.Z[lane] = rotation.z, lanes.W[lane] = rotation.w;
}
void Get(const EulerLanes& lanes, size_t lane, EulerAngles& angles) {
  angles = {lanes.X[lane], lanes.Y[lane], lanes.Z[lane]};
}
void Get(const QuatLanes& lanes, size_t lane, Quat& rotation) {
  rotation = {lanes.X[lane], lanes.Y[lane], lanes.Z[lane], lanes.W[lane]};
}

/// Turns all of `from` by `turn`, and those that it doubts by `plain`.
template <typename From, typename To, typename FromLanes, typename ToLanes>
void TurnAll(std::span<const From> from, std::span<To> to,
             void (*turn)(const FromLanes* in, ToLanes* out, DoubtLanes* doubts, size_t groups),
             void (*plain)(const From& in, To& out)) {
  FromLanes in[MostGroups];
  ToLanes out[MostGroups];
  DoubtLanes doubts[MostGroups];
  for (size_t first = 0; first < from.size(); first += MostGroups * Lanes) {
    const size_t count = std::min(MostGroups * Lanes, from.size() - first), groups = (count + Lanes - 1) / Lanes;
    const From* const given = from.subspan(first, count).data();
    To* const turned = to.subspan(first, count).data();
    in[groups - 1] = {};
    for (size_t i = 0; i < count; ++i) Put(in[i / Lanes], i % Lanes, given[i]);
    turn(in, out, doubts, groups);
    for (size_t i = 0; i < count; ++i) {
      Get(out[i / Lanes], i % Lanes, turned[i]);
      if (doubts[i / Lanes].Value[i % Lanes] != 0) plain(given[i], turned[i]);
    }
  }
}

}  // namespace

void QuickEulerToQuat(std::span<const EulerAngles> angles, std::span<Quat> result, core::VectorLevel level) {
  TurnAll(angles, result, Pick(level, EulerToQuatPlain, EulerToQuatAvx2, EulerToQuatAvx512), EulerToQuat);
}

void QuickQuatToEuler(std::span<const Quat> rotations, std::span<EulerAngles> result, core::VectorLevel level) {
  TurnAll(rotations, result, Pick(level, QuatToEulerPlain, QuatToEulerAvx2, QuatToEulerAvx512), QuatToEuler);
}

}  // namespace tarnwick::model

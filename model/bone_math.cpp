#include "model/bone_math.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <limits>

namespace tarnwick::model {

namespace {

/// Below this length in the XY plane the X axis counts as pointing along Z. Just above a thousandth, as a float is.
constexpr double GimbalThreshold = 0.0010000000474974513;
/// The least trace plus 1 from which a quaternion is taken by way of w. The float behind 1.
constexpr double TraceThreshold = 1.0000001192092896;

float Stored(double value) {
  return static_cast<float>(value);
}

Quat QuatOf(double x, double y, double z, double w) {
  return {Stored(x), Stored(y), Stored(z), Stored(w)};
}

double SumOfSquares(double a, double b, double c, double d) {
  return a * a + b * b + c * c + d * d;
}

/// The w of a unit quaternion with the other components of `q`. Not clamped: a sum above 1 gives a not-a-number.
float MissingW(const Quat& q, bool negative) {
  const double x = q.x, y = q.y, z = q.z;
  const double w = std::sqrt(1.0 - x * x - y * y - z * z);
  return Stored(negative ? -w : w);
}

}  // namespace

void AnglesToMatrix(const PitchYawRoll& a, Matrix3x4& result) {
  AnglesPosToMatrix(a, {0, 0, 0}, result);
}

void AnglesPosToMatrix(const PitchYawRoll& a, const Vec3& p, Matrix3x4& result) {
  const double yaw = a.Yaw * DegreesToRadians, pitch = a.Pitch * DegreesToRadians, roll = a.Roll * DegreesToRadians;
  const double sy = std::sin(yaw), cy = std::cos(yaw);
  const double sp = std::sin(pitch), cp = std::cos(pitch);
  const double sr = std::sin(roll), cr = std::cos(roll);
  SetMatrixColumn(result, 0, {Stored(cp * cy), Stored(cp * sy), Stored(-sp)});
  SetMatrixColumn(result, 1, {Stored(sp * sr * cy - cr * sy), Stored(sp * sr * sy + cr * cy), Stored(sr * cp)});
  SetMatrixColumn(result, 2, {Stored(sp * cr * cy + sr * sy), Stored(sp * cr * sy - sr * cy), Stored(cr * cp)});
  SetMatrixColumn(result, 3, p);
}

void QuatToMatrix(const Quat& q, Matrix3x4& result) {
  QuatPosToMatrix(q, {0, 0, 0}, result);
}

void QuatPosToMatrix(const Quat& q, const Vec3& p, Matrix3x4& result) {
  const double x = q.x, y = q.y, z = q.z, w = q.w;
  SetMatrixColumn(result, 0,
                  {Stored(1 - 2 * y * y - 2 * z * z), Stored(2 * x * y + 2 * w * z), Stored(2 * x * z - 2 * w * y)});
  SetMatrixColumn(result, 1,
                  {Stored(2 * x * y - 2 * w * z), Stored(1 - 2 * x * x - 2 * z * z), Stored(2 * y * z + 2 * w * x)});
  SetMatrixColumn(result, 2,
                  {Stored(2 * x * z + 2 * w * y), Stored(2 * y * z - 2 * w * x), Stored(1 - 2 * x * x - 2 * y * y)});
  SetMatrixColumn(result, 3, p);
}

void MatrixToQuatPos(const Matrix3x4& m, Quat& q, Vec3& p) {
  const double m00 = m(0, 0), m01 = m(0, 1), m02 = m(0, 2);
  const double m10 = m(1, 0), m11 = m(1, 1), m12 = m(1, 2);
  const double m20 = m(2, 0), m21 = m(2, 1), m22 = m(2, 2);
  const float trace = Stored(m00 + m11 + m22 + 1);
  if (trace > TraceThreshold) {
    q = QuatOf(m21 - m12, m02 - m20, m10 - m01, trace);
  } else if (m00 > m11 && m00 > m22) {
    q = QuatOf(m00 + 1 - m11 - m22, m10 + m01, m02 + m20, m21 - m12);
  } else if (m11 > m22) {
    q = QuatOf(m01 + m10, m11 + 1 - m00 - m22, m21 + m12, m02 - m20);
  } else {
    q = QuatOf(m02 + m20, m21 + m12, m22 + 1 - m00 - m11, m10 - m01);
  }
  NormalizeQuat(q);
  GetMatrixColumn(m, 3, p);
}

void MatrixToAngles(const Matrix3x4& m, PitchYawRoll& result) {
  const double fx = m(0, 0), fy = m(1, 0), fz = m(2, 0);
  const float d = Stored(std::sqrt(fx * fx + fy * fy));
  result.Pitch = Stored(std::atan2(-fz, double{d}) * RadiansToDegrees);
  if (d > GimbalThreshold) {
    result.Yaw = Stored(std::atan2(fy, fx) * RadiansToDegrees);
    result.Roll = Stored(std::atan2(double{m(2, 1)}, double{m(2, 2)}) * RadiansToDegrees);
  } else {
    result.Yaw = Stored(std::atan2(-double{m(0, 1)}, double{m(1, 1)}) * RadiansToDegrees);
    result.Roll = 0;
  }
}

void MatrixToEuler(const Matrix3x4& m, EulerAngles& result) {
  PitchYawRoll a;
  MatrixToAngles(m, a);
  result = {Stored(a.Roll * DegreesToRadians), Stored(a.Pitch * DegreesToRadians), Stored(a.Yaw * DegreesToRadians)};
}

void QuatToEuler(const Quat& q, EulerAngles& result) {
  Matrix3x4 m;
  QuatToMatrix(q, m);
  MatrixToEuler(m, result);
}

void QuatToEulerNear(const Quat& q, const EulerAngles& near, EulerAngles& result) {
  constexpr double Pi = 3.14159265358979323846;
  // With half the angles a, b, c these are (cos b +- sin b) times sine and cosine of a - c and of a + c.
  const double differenceSine = double{q.x} - double{q.z}, differenceCosine = double{q.w} + double{q.y};
  const double sumSine = double{q.x} + double{q.z}, sumCosine = double{q.w} - double{q.y};
  const double up = std::hypot(differenceSine, differenceCosine), down = std::hypot(sumSine, sumCosine);
  constexpr double Nothing = 2e-6;  // what floats leave of a sine where it should be 0
  const double difference =
      up > Nothing ? std::atan2(differenceSine, differenceCosine) : (double{near.x} - double{near.z}) / 2;
  const double sum = down > Nothing ? std::atan2(sumSine, sumCosine) : (double{near.x} + double{near.z}) / 2;
  const double pitch = 2 * std::atan2(up, down) - Pi / 2;
  const double sets[2][3] = {{sum + difference, pitch, sum - difference},
                             {sum + difference + Pi, Pi - pitch, sum - difference + Pi}};
  const double wanted[3] = {near.x, near.y, near.z};
  double best[3] = {}, least = std::numeric_limits<double>::infinity();
  for (const auto& set : sets) {
    double turned[3], miss = 0;
    for (int i = 0; i < 3; ++i) {
      turned[i] = set[i] - 2 * Pi * std::nearbyint((set[i] - wanted[i]) / (2 * Pi));
      miss += (turned[i] - wanted[i]) * (turned[i] - wanted[i]);
    }
    if (!(miss < least)) continue;
    least = miss;
    std::copy(std::begin(turned), std::end(turned), std::begin(best));
  }
  result = {static_cast<float>(best[0]), static_cast<float>(best[1]), static_cast<float>(best[2])};
}

void EulerToQuat(const EulerAngles& e, Quat& result) {
  const double sr = std::sin(e.x * 0.5), cr = std::cos(e.x * 0.5);
  const double sp = std::sin(e.y * 0.5), cp = std::cos(e.y * 0.5);
  const double sy = std::sin(e.z * 0.5), cy = std::cos(e.z * 0.5);
  const float a = Stored(sr * cp), b = Stored(cr * sp), c = Stored(cr * cp), d = Stored(sr * sp);
  result = QuatOf(a * cy - b * sy, b * cy + a * sy, c * sy - d * cy, c * cy + d * sy);
}

void NormalizeQuat(Quat& q) {
  const float r = Stored(SumOfSquares(q.x, q.y, q.z, q.w));
  if (r == 0) return;
  const float s = Stored(std::sqrt(double{r}));
  const float i = Stored(1.0 / s);
  q = {q.x * i, q.y * i, q.z * i, q.w * i};
}

void AlignQuat(const Quat& p, const Quat& q, Quat& result) {
  const double px = p.x, py = p.y, pz = p.z, pw = p.w;
  const double a = SumOfSquares(px - q.x, py - q.y, pz - q.z, pw - q.w);
  const double b = SumOfSquares(px + q.x, py + q.y, pz + q.z, pw + q.w);
  result = a > b ? Quat{-q.x, -q.y, -q.z, -q.w} : q;
}

void ConcatMatrix(const Matrix3x4& a, const Matrix3x4& b, Matrix3x4& result) {
  Matrix3x4 product;
  for (int row = 0; row < 3; ++row) {
    const double a0 = a(row, 0), a1 = a(row, 1), a2 = a(row, 2);
    for (int column = 0; column < 3; ++column) {
      product.Set(row, column, Stored(a0 * b(0, column) + a1 * b(1, column) + a2 * b(2, column)));
    }
    product.Set(row, 3, Stored(a0 * b(0, 3) + a1 * b(1, 3) + a2 * b(2, 3) + a(row, 3)));
  }
  result = product;
}

void InverseTransformPoint(const Vec3& v, const Matrix3x4& m, Vec3& result) {
  const double x = double{v.x} - m(0, 3), y = double{v.y} - m(1, 3), z = double{v.z} - m(2, 3);
  result = {Stored(x * m(0, 0) + y * m(1, 0) + z * m(2, 0)), Stored(x * m(0, 1) + y * m(1, 1) + z * m(2, 1)),
            Stored(x * m(0, 2) + y * m(1, 2) + z * m(2, 2))};
}

void GetMatrixColumn(const Matrix3x4& m, int column, Vec3& result) {
  result = {m(0, column), m(1, column), m(2, column)};
}

void SetMatrixColumn(Matrix3x4& m, int column, const Vec3& value) {
  m.Set(0, column, value.x);
  m.Set(1, column, value.y);
  m.Set(2, column, value.z);
}

void DecodeQuat48(const PackedQuat48& packed, Quat& result) {
  constexpr double Scale16 = 3.0517578125e-05;  // 1/32768
  constexpr double Scale15 = 6.103515625e-05;   // 1/16384
  const int a = packed.Words[0], b = packed.Words[1], c = packed.Words[2];
  Quat q{Stored((a - 32768) * Scale16), Stored((b - 32768) * Scale16), Stored(((c & 0x7FFF) - 16384) * Scale15), 0};
  q.w = MissingW(q, (c & 0x8000) != 0);
  result = q;
}

void DecodeQuat64(const PackedQuat64& packed, Quat& result) {
  constexpr double Scale21 = 9.536738616588991e-07;  // the float next to 1/1048576.5
  const uint64_t bits = packed.Bits;
  const auto component = [&](int shift) {
    return Stored((static_cast<int>(bits >> shift & 0x1FFFFF) - 1048576) * Scale21);
  };
  Quat q{component(0), component(21), component(42), 0};
  q.w = MissingW(q, bits >> 63 != 0);
  result = q;
}

float DecodeHalfFloat(uint16_t bits) {
  const uint32_t sign = uint32_t{bits} >> 15;
  const uint32_t exponent = uint32_t{bits} >> 10 & 0x1F;
  const uint32_t mantissa = uint32_t{bits} & 0x3FF;
  if (exponent == 31) {
    if (mantissa != 0) return 0.0f;
    return sign != 0 ? -65504.0f : 65504.0f;
  }
  if (exponent == 0 && mantissa != 0) {
    const double value = mantissa / 1024.0 * 6.103515625e-05;
    return Stored(sign != 0 ? -value : value);
  }
  return std::bit_cast<float>(sign << 31 | (exponent == 0 ? 0 : exponent + 112) << 23 | mantissa << 13);
}

void DecodeVec48(const PackedVec48& packed, Vec3& result) {
  result = {DecodeHalfFloat(packed.Words[0]), DecodeHalfFloat(packed.Words[1]), DecodeHalfFloat(packed.Words[2])};
}

}  // namespace tarnwick::model

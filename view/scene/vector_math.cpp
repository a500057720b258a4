#include "view/scene/vector_math.h"

#include <algorithm>

namespace tarnwick::view {

void Box::Add(const Vec3& point) {
  if (!std::isfinite(point.X) || !std::isfinite(point.Y) || !std::isfinite(point.Z)) return;
  if (IsEmpty()) {
    Minimum = Maximum = point;
    return;
  }
  Minimum = {std::min(Minimum.X, point.X), std::min(Minimum.Y, point.Y), std::min(Minimum.Z, point.Z)};
  Maximum = {std::max(Maximum.X, point.X), std::max(Maximum.Y, point.Y), std::max(Maximum.Z, point.Z)};
}

Vec3 Box::Centre() const {
  return IsEmpty() ? Vec3{} : Minimum * 0.5f + Maximum * 0.5f;
}

float Box::Radius() const {
  return IsEmpty() ? 0 : Length(Maximum * 0.5f - Minimum * 0.5f);
}

Vec3 Unit(const Vec3& a) {
  const float length = Length(a);
  return length > 0 ? a * (1 / length) : a;
}

Matrix34 MatrixOf(const Quat& q, const Vec3& p) {
  const float xx = 2 * q.X * q.X, yy = 2 * q.Y * q.Y, zz = 2 * q.Z * q.Z;
  const float xy = 2 * q.X * q.Y, xz = 2 * q.X * q.Z, yz = 2 * q.Y * q.Z;
  const float wx = 2 * q.W * q.X, wy = 2 * q.W * q.Y, wz = 2 * q.W * q.Z;
  return {{1 - yy - zz, xy - wz, xz + wy, p.X, xy + wz, 1 - xx - zz, yz - wx, p.Y, xz - wy, yz + wx, 1 - xx - yy, p.Z}};
}

Matrix34 InverseOf(const Matrix34& m) {
  Matrix34 inverse;
  for (size_t row = 0; row < 3; ++row) {
    for (size_t column = 0; column < 3; ++column) inverse(row, column) = m(column, row);
    inverse(row, 3) = -(m(0, row) * m(0, 3) + m(1, row) * m(1, 3) + m(2, row) * m(2, 3));
  }
  return inverse;
}

Quat operator*(const Quat& a, const Quat& b) {
  return {a.W * b.X + a.X * b.W + a.Y * b.Z - a.Z * b.Y, a.W * b.Y - a.X * b.Z + a.Y * b.W + a.Z * b.X,
          a.W * b.Z + a.X * b.Y - a.Y * b.X + a.Z * b.W, a.W * b.W - a.X * b.X - a.Y * b.Y - a.Z * b.Z};
}

Quat QuatOfAngles(const Vec3& radians) {
  const float sr = std::sin(radians.X / 2), cr = std::cos(radians.X / 2);
  const float sp = std::sin(radians.Y / 2), cp = std::cos(radians.Y / 2);
  const float sy = std::sin(radians.Z / 2), cy = std::cos(radians.Z / 2);
  return {sr * cp * cy - cr * sp * sy, cr * sp * cy + sr * cp * sy, cr * cp * sy - sr * sp * cy,
          cr * cp * cy + sr * sp * sy};
}

Matrix44 Multiply(const Matrix44& a, const Matrix44& b) {
  Matrix44 product{};
  for (size_t column = 0; column < 4; ++column) {
    for (size_t row = 0; row < 4; ++row) {
      float sum = 0;
      for (size_t k = 0; k < 4; ++k) sum += a[4 * k + row] * b[4 * column + k];
      product[4 * column + row] = sum;
    }
  }
  return product;
}

}  // namespace tarnwick::view

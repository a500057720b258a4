#pragma once

#include <array>
#include <cmath>

namespace tarnwick::view {

/// A point, a direction, or a size along three axes, in the model's units. X is the way that a model looks, Y its left,
/// Z up.
struct Vec3 {
  float X = 0, Y = 0, Z = 0;

  bool operator==(const Vec3&) const = default;
};

/// A rotation as a unit quaternion.
struct Quat {
  float X = 0, Y = 0, Z = 0, W = 1;

  bool operator==(const Quat&) const = default;
};

/// Three rows of four: a rotation (columns 0 to 2) and a translation (column 3). A point p goes to M * (p, 1).
struct Matrix34 {
  std::array<float, 12> M = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};

  float operator()(size_t row, size_t column) const { return M[4 * row + column]; }
  float& operator()(size_t row, size_t column) { return M[4 * row + column]; }
  bool operator==(const Matrix34&) const = default;

  Vec3 Translation() const { return {M[3], M[7], M[11]}; }
};

/// A matrix as OpenGL takes it: column after column, element (row, column) at 4 * column + row.
using Matrix44 = std::array<float, 16>;

/// A box along the axes. Without any point in it `Minimum` is above `Maximum`.
struct Box {
  Vec3 Minimum{1, 1, 1};
  Vec3 Maximum{-1, -1, -1};

  bool IsEmpty() const { return !(Minimum.X <= Maximum.X && Minimum.Y <= Maximum.Y && Minimum.Z <= Maximum.Z); }
  /// Makes the box hold `point`; one that is not finite is left out.
  void Add(const Vec3& point);
  Vec3 Centre() const;
  /// Half the diagonal; 0 for an empty box.
  float Radius() const;
  bool operator==(const Box&) const = default;
};

inline Vec3 operator+(const Vec3& a, const Vec3& b) {
  return {a.X + b.X, a.Y + b.Y, a.Z + b.Z};
}
inline Vec3 operator-(const Vec3& a, const Vec3& b) {
  return {a.X - b.X, a.Y - b.Y, a.Z - b.Z};
}
inline Vec3 operator*(const Vec3& a, float factor) {
  return {a.X * factor, a.Y * factor, a.Z * factor};
}
inline float Dot(const Vec3& a, const Vec3& b) {
  return a.X * b.X + a.Y * b.Y + a.Z * b.Z;
}
inline Vec3 Cross(const Vec3& a, const Vec3& b) {
  return {a.Y * b.Z - a.Z * b.Y, a.Z * b.X - a.X * b.Z, a.X * b.Y - a.Y * b.X};
}
inline float Length(const Vec3& a) {
  return std::sqrt(Dot(a, a));
}
/// `a` made of length 1; zeros stay.
Vec3 Unit(const Vec3& a);

inline Vec3 TransformPoint(const Matrix34& m, const Vec3& p) {
  return {m.M[0] * p.X + m.M[1] * p.Y + m.M[2] * p.Z + m.M[3], m.M[4] * p.X + m.M[5] * p.Y + m.M[6] * p.Z + m.M[7],
          m.M[8] * p.X + m.M[9] * p.Y + m.M[10] * p.Z + m.M[11]};
}
inline Vec3 TurnDirection(const Matrix34& m, const Vec3& d) {
  return {m.M[0] * d.X + m.M[1] * d.Y + m.M[2] * d.Z, m.M[4] * d.X + m.M[5] * d.Y + m.M[6] * d.Z,
          m.M[8] * d.X + m.M[9] * d.Y + m.M[10] * d.Z};
}
/// First `b`, then `a`.
inline Matrix34 operator*(const Matrix34& a, const Matrix34& b) {
  Matrix34 product;
  for (size_t row = 0; row < 3; ++row) {
    const float a0 = a.M[4 * row], a1 = a.M[4 * row + 1], a2 = a.M[4 * row + 2], a3 = a.M[4 * row + 3];
    for (size_t column = 0; column < 4; ++column) {
      product.M[4 * row + column] = a0 * b.M[column] + a1 * b.M[4 + column] + a2 * b.M[8 + column];
    }
    product.M[4 * row + 3] += a3;
  }
  return product;
}

/// The matrix that turns by `rotation` and then moves by `position`.
Matrix34 MatrixOf(const Quat& rotation, const Vec3& position);
/// The inverse of a rotation and a translation.
Matrix34 InverseOf(const Matrix34& m);
/// First `b`, then `a`.
Quat operator*(const Quat& a, const Quat& b);
/// The rotation about X, then Y, then Z, in radians.
Quat QuatOfAngles(const Vec3& radians);

/// First `b`, then `a`.
Matrix44 Multiply(const Matrix44& a, const Matrix44& b);

}  // namespace tarnwick::view

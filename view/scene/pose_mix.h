#pragma once

#include <cmath>

#include "view/scene/frame_source.h"

namespace tarnwick::view {

inline Quat Inverse(const Quat& q) {
  return {-q.X, -q.Y, -q.Z, q.W};
}

/// `q` made of length 1; no rotation where it is 0.
inline Quat UnitQuat(const Quat& q) {
  const float length = std::sqrt(q.X * q.X + q.Y * q.Y + q.Z * q.Z + q.W * q.W);
  return length > 0 ? Quat{q.X / length, q.Y / length, q.Z / length, q.W / length} : Quat{};
}

/// From `a` (part 0) to `b` (part 1) along the shorter way, of unit length and nearly as even as the arc itself: the
/// straight line between the two, with the part bent by how far they lie apart (a fit of A. Kapoulkine's,
/// "Approximating slerp", 2018: off by less than 0.002 radians at any part, by nothing at 0, half and 1).
inline Quat Mix(const Quat& a, const Quat& b, float part) {
  const float dot = a.X * b.X + a.Y * b.Y + a.Z * b.Z + a.W * b.W;
  const float d = std::fabs(dot);
  const float centre = part - 0.5f;
  const float k = (1.0904f + d * (-3.2452f + d * (3.55645f - d * 1.43519f))) * (centre * centre) + 0.848013f +
                  d * (-1.06021f + d * 0.215638f);
  const float bent = part + part * centre * (part - 1) * k;
  const float toA = 1 - bent;
  const float toB = dot < 0 ? -bent : bent;
  const Quat sum{a.X * toA + b.X * toB, a.Y * toA + b.Y * toB, a.Z * toA + b.Z * toB, a.W * toA + b.W * toB};
  const float scale = 1 / std::sqrt(sum.X * sum.X + sum.Y * sum.Y + sum.Z * sum.Z + sum.W * sum.W);
  return {sum.X * scale, sum.Y * scale, sum.Z * scale, sum.W * scale};
}

inline Vec3 Mix(const Vec3& a, const Vec3& b, float part) {
  return {a.X + (b.X - a.X) * part, a.Y + (b.Y - a.Y) * part, a.Z + (b.Z - a.Z) * part};
}

inline BonePose Mix(const BonePose& a, const BonePose& b, float part) {
  return {Mix(a.Rotation, b.Rotation, part), Mix(a.Position, b.Position, part)};
}

}  // namespace tarnwick::view

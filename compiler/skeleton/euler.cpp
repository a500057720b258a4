#include "compiler/skeleton/euler.h"

#include <cmath>
#include <numbers>

namespace tarnwick::compiler {

namespace {

constexpr double Turn = 2 * std::numbers::pi;

/// Below this cosine of the pitch the turns about X and Z cannot be told apart.
constexpr double GimbalThreshold = 1e-6;

double Near(double angle, double base) {
  return angle - Turn * std::round((angle - base) / Turn);
}
double Distance(const double (&a)[3], const double (&b)[3]) {
  return std::abs(a[0] - b[0]) + std::abs(a[1] - b[1]) + std::abs(a[2] - b[2]);
}

}  // namespace

model::EulerAngles EulerOf(const model::RigidTransform& transform) {
  const auto& m = transform.Turn;
  const double forward = std::hypot(m[0][0], m[1][0]);
  const auto pitch = static_cast<float>(std::atan2(-m[2][0], forward));
  if (forward <= GimbalThreshold) return {0, pitch, static_cast<float>(std::atan2(-m[0][1], m[1][1]))};
  return {static_cast<float>(std::atan2(m[2][1], m[2][2])), pitch, static_cast<float>(std::atan2(m[1][0], m[0][0]))};
}

void NearestAngles(const double (&angles)[3], const double (&base)[3], double (&result)[3]) {
  const double same[3] = {Near(angles[0], base[0]), Near(angles[1], base[1]), Near(angles[2], base[2])};
  const double other[3] = {Near(angles[0] + std::numbers::pi, base[0]), Near(std::numbers::pi - angles[1], base[1]),
                           Near(angles[2] + std::numbers::pi, base[2])};
  const bool first = Distance(same, base) <= Distance(other, base);
  for (int i = 0; i < 3; ++i) result[i] = first ? same[i] : other[i];
}

model::Matrix3x4 MatrixOf(const model::RigidTransform& transform) {
  model::Matrix3x4 matrix;
  for (int row = 0; row < 3; ++row) {
    const auto r = static_cast<size_t>(row);
    for (int column = 0; column < 3; ++column) {
      matrix.Set(row, column, static_cast<float>(transform.Turn[r][static_cast<size_t>(column)]));
    }
    matrix.Set(row, 3, static_cast<float>(transform.Move[r]));
  }
  return matrix;
}

model::Vec3 MoveOf(const model::RigidTransform& transform) {
  return {static_cast<float>(transform.Move[0]), static_cast<float>(transform.Move[1]),
          static_cast<float>(transform.Move[2])};
}

}  // namespace tarnwick::compiler

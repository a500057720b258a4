#include "model/rigid_transform.h"

#include <cmath>

namespace tarnwick::model {

namespace {

std::array<double, 3> ValuesOf(const Vec3& v) {
  return {double{v.x}, double{v.y}, double{v.z}};
}

}  // namespace

RigidTransform RigidTransform::Of(const EulerAngles& angles, const Vec3& position) {
  const double sx = std::sin(double{angles.x}), cx = std::cos(double{angles.x});
  const double sy = std::sin(double{angles.y}), cy = std::cos(double{angles.y});
  const double sz = std::sin(double{angles.z}), cz = std::cos(double{angles.z});
  return {{{{cz * cy, cz * sy * sx - sz * cx, cz * sy * cx + sz * sx},
            {sz * cy, sz * sy * sx + cz * cx, sz * sy * cx - cz * sx},
            {-sy, cy * sx, cy * cx}}},
          ValuesOf(position)};
}

RigidTransform RigidTransform::Of(const Quat& rotation, const Vec3& position) {
  const double x = rotation.x, y = rotation.y, z = rotation.z, w = rotation.w;
  return {{{{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
            {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
            {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}}},
          ValuesOf(position)};
}

RigidTransform RigidTransform::QuarterTurn() {
  return {{{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}}, {0, 0, 0}};
}

RigidTransform RigidTransform::Inverse() const {
  RigidTransform inverse;
  for (size_t row = 0; row < 3; ++row) {
    for (size_t column = 0; column < 3; ++column) {
      inverse.Turn[row][column] = Turn[column][row];
      inverse.Move[row] -= Turn[column][row] * Move[column];
    }
  }
  return inverse;
}

Vec3 RigidTransform::Apply(const Vec3& point) const {
  const std::array<double, 3> p = ValuesOf(point);
  const auto row = [&](size_t i) {
    return static_cast<float>(Turn[i][0] * p[0] + Turn[i][1] * p[1] + Turn[i][2] * p[2] + Move[i]);
  };
  return {row(0), row(1), row(2)};
}

RigidTransform operator*(const RigidTransform& a, const RigidTransform& b) {
  RigidTransform product;
  for (size_t row = 0; row < 3; ++row) {
    product.Move[row] = a.Move[row];
    for (size_t k = 0; k < 3; ++k) product.Move[row] += a.Turn[row][k] * b.Move[k];
    for (size_t column = 0; column < 3; ++column) {
      product.Turn[row][column] = 0;
      for (size_t k = 0; k < 3; ++k) product.Turn[row][column] += a.Turn[row][k] * b.Turn[k][column];
    }
  }
  return product;
}

std::vector<RigidTransform> RestPlacements(const Skeleton& skeleton) {
  std::vector<RigidTransform> placements;
  placements.reserve(static_cast<size_t>(skeleton.Count()));
  for (const auto bone : skeleton.Bones) {
    const RigidTransform local = RigidTransform::Of(bone->Angles, bone->Position);
    const auto parent = static_cast<size_t>(bone->Parent);
    placements.push_back(bone->Parent >= 0 && parent < placements.size() ? placements[parent] * local : local);
  }
  return placements;
}

}  // namespace tarnwick::model

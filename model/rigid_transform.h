#pragma once

#include <array>
#include <vector>

#include "model/bone_math_types.h"
#include "model/loaded_model.h"

namespace tarnwick::model {

/// A turn and then a move, in double precision: what points go through on their way between spaces, so that they come
/// back to the same floats.
struct RigidTransform {
  std::array<std::array<double, 3>, 3> Turn = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};  // rows
  std::array<double, 3> Move = {0, 0, 0};

  /// Turned round X, then Y, then Z, as SMD files and bone records hold rotations (radians).
  [[nodiscard]] static RigidTransform Of(const EulerAngles& angles, const Vec3& position);
  /// Turned by `rotation`, of unit length.
  [[nodiscard]] static RigidTransform Of(const Quat& rotation, const Vec3& position);
  /// Turned by +90 degrees about Z: (x, y, z) goes to (-y, x, z).
  [[nodiscard]] static RigidTransform QuarterTurn();

  [[nodiscard]] RigidTransform Inverse() const;
  [[nodiscard]] Vec3 Apply(const Vec3& point) const;
};

/// First `b`, then `a`.
[[nodiscard]] RigidTransform operator*(const RigidTransform& a, const RigidTransform& b);

/// Where each bone stands at rest in the model's space, by the positions and angles of the bone records. A bone whose
/// parent does not stand before it counts as a root.
[[nodiscard]] std::vector<RigidTransform> RestPlacements(const Skeleton& skeleton);

}  // namespace tarnwick::model

#pragma once

#include "model/bone_math_types.h"
#include "model/rigid_transform.h"

namespace tarnwick::compiler {

/// The angles of a turn about X, Y and Z in radians. Near a pitch of 90 degrees the turn about X is 0.
model::EulerAngles EulerOf(const model::RigidTransform& transform);

/// Of all sets of angles that mean the same turn as `angles`, the one nearest to `base`: the other set of the same
/// turn, and whole turns more or less on each axis. In doubles; `result` is X, Y, Z.
void NearestAngles(const double (&angles)[3], const double (&base)[3], double (&result)[3]);

/// A transform as 3 x 4 numbers, row by row.
model::Matrix3x4 MatrixOf(const model::RigidTransform& transform);
model::Vec3 MoveOf(const model::RigidTransform& transform);

}  // namespace tarnwick::compiler

#pragma once

#include "compiler/animation/built_motion.h"
#include "compiler/skeleton/euler.h"

namespace tarnwick::compiler {

inline model::RigidTransform TransformOf(const BonePose& pose) {
  return model::RigidTransform::Of(model::EulerAngles{pose.Angles[0], pose.Angles[1], pose.Angles[2]},
                                   model::Vec3{pose.Position[0], pose.Position[1], pose.Position[2]});
}

inline BonePose PoseOf(const model::RigidTransform& transform) {
  const model::Vec3 place = MoveOf(transform);
  const model::EulerAngles angles = EulerOf(transform);
  return {{place.x, place.y, place.z}, {angles.x, angles.y, angles.z}};
}

/// `pose` with those of its angles that lie nearest to the angles of `base`.
inline BonePose Nearest(const BonePose& pose, const BonePose& base) {
  const double angles[3] = {double{pose.Angles[0]}, double{pose.Angles[1]}, double{pose.Angles[2]}};
  const double near[3] = {double{base.Angles[0]}, double{base.Angles[1]}, double{base.Angles[2]}};
  double result[3];
  NearestAngles(angles, near, result);
  return {pose.Position, {static_cast<float>(result[0]), static_cast<float>(result[1]), static_cast<float>(result[2])}};
}

}  // namespace tarnwick::compiler

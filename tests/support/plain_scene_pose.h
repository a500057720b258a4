#pragma once

#include <vector>

#include "view/scene/scene_pose.h"

namespace tarnwick::tests {

/// The pose of a scene the plain way: every frame sought by itself, rotations along the true arc, all in double
/// precision. What view::ScenePose is compared with, in tests by values and in benchmarks by speed. Gives each bone's
/// place; of layers it knows those that are not local, of sequences those that are not in world space.
std::vector<view::Matrix34> PlainScenePose(const view::Scene& scene, const view::PoseRequest& request);

}  // namespace tarnwick::tests

#pragma once

#include <optional>

#include "view/scene/scene_pose.h"
#include "view/scene/view_state.h"

namespace tarnwick::view {

/// A triangle of a scene under a point of its picture.
struct PickedTriangle {
  int32_t Draw = 0;      // a place in Scene::Draws
  int64_t Triangle = 0;  // of that draw
  int32_t Material = 0;  // a place in Scene::Materials; -1 for none
  Vec3 Place;            // where it was hit
};

/// The nearest triangle that is shown at (`x`, `y`), from the upper left corner of a picture of `width` by `height`;
/// nothing where there is none. Flexes are passed over.
std::optional<PickedTriangle> PickTriangle(const Scene& scene, const ViewState& state, const ScenePose& pose,
                                           float width, float height, float x, float y);

}  // namespace tarnwick::view

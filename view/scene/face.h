#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "view/scene/scene.h"

namespace tarnwick::view {

/// The value of a controller that nobody moves: 0, or what is next to it.
float DefaultControllerValue(const SceneFlexController& controller);

/// The weight of each flex by the model's rules, from the controllers' values (between Minimum and Maximum; those that
/// are missing have their defaults).
std::vector<float> FlexWeights(const Scene& scene, std::span<const float> controllers);

/// The part of `Scene::Points` that flexes can change; empty without flexes.
struct PointRange {
  int64_t First = 0;
  int64_t Count = 0;

  bool operator==(const PointRange&) const = default;
};
PointRange FlexedRange(const Scene& scene);

/// Makes `points` those of the scene, moved by its flexes at these weights. `points` is either empty or what an earlier
/// call has left.
void FlexPoints(const Scene& scene, std::span<const float> weights, std::vector<ScenePoint>& points);

}  // namespace tarnwick::view

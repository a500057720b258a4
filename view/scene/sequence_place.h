#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "view/scene/scene.h"

namespace tarnwick::view {

/// Which animations of a sequence are seen at some pose parameters: the four round the place in its grid, and how far
/// it is from the first column to the second, and from the first row to the second.
struct SequencePlace {
  std::array<int32_t, 4> Animations = {};  // row after row
  float Across = 0;                        // 0 to 1
  float Down = 0;

  /// How much each of the four counts.
  std::array<float, 4> Weights() const {
    return {(1 - Across) * (1 - Down), Across * (1 - Down), (1 - Across) * Down, Across * Down};
  }
};

/// The place of `sequence`, which has animations.
SequencePlace PlaceOf(const Scene& scene, const SceneSequence& sequence, std::span<const float> poseParameters);

/// The value that a pose parameter has if nobody sets it: 0, or what is next to it.
float DefaultPoseValue(const ScenePoseParameter& parameter);

/// The value of pose parameter `index`, in its range: what is given, or its default. 0 for one that the scene lacks.
float PoseValue(const Scene& scene, int32_t index, std::span<const float> poseParameters);

/// Frames per second and the number of frames of a sequence at these pose parameters.
struct SequenceTiming {
  float Fps = 30;
  float LastFrame = 0;  // may lie between two whole ones: animations of unlike lengths are blended
};
SequenceTiming TimingOf(const Scene& scene, int32_t sequence, std::span<const float> poseParameters);

/// How much of a layer is there at `cycle` (or at the value of its pose parameter): 0 to 1.
float RampOf(const SceneAutoLayer& layer, float cycle);

}  // namespace tarnwick::view

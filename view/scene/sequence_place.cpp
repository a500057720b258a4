#include "view/scene/sequence_place.h"

#include <algorithm>
#include <cmath>

namespace tarnwick::view {

namespace {

/// A place on an axis of the grid.
struct AxisPlace {
  int32_t Index = 0;
  float Part = 0;
};

AxisPlace PlaceOnAxis(const SceneSequence& sequence, size_t axis, int32_t count, float value) {
  if (count < 2) return {};
  const std::vector<float>& keys = sequence.PoseKeys[axis];
  if (static_cast<int32_t>(keys.size()) == count) {
    int32_t index = 0;
    const bool rises = keys.back() >= keys.front();
    const auto isBehind = [&](float key) { return rises ? value >= key : value <= key; };
    while (index < count - 2 && isBehind(keys[static_cast<size_t>(index) + 1])) ++index;
    const float from = keys[static_cast<size_t>(index)];
    const float to = keys[static_cast<size_t>(index) + 1];
    return {index, to == from ? 0 : std::clamp((value - from) / (to - from), 0.0f, 1.0f)};
  }
  const float range = sequence.PoseEnd[axis] - sequence.PoseStart[axis];
  const float part = range == 0 ? 0 : std::clamp((value - sequence.PoseStart[axis]) / range, 0.0f, 1.0f);
  const float scaled = std::isfinite(part) ? part * static_cast<float>(count - 1) : 0;
  const int32_t index = std::min(static_cast<int32_t>(scaled), count - 2);
  return {index, scaled - static_cast<float>(index)};
}

}  // namespace

float DefaultPoseValue(const ScenePoseParameter& parameter) {
  const auto [low, high] = std::minmax(parameter.Start, parameter.End);
  return std::clamp(0.0f, low, high);
}

float PoseValue(const Scene& scene, int32_t index, std::span<const float> poseParameters) {
  if (index < 0 || static_cast<size_t>(index) >= scene.PoseParameters.size()) return 0;
  const ScenePoseParameter& parameter = scene.PoseParameters[static_cast<size_t>(index)];
  if (static_cast<size_t>(index) >= poseParameters.size()) return DefaultPoseValue(parameter);
  float value = poseParameters[static_cast<size_t>(index)];
  if (!std::isfinite(value)) return DefaultPoseValue(parameter);
  if (parameter.Wrap > 0) {
    const float lowest = (parameter.Start + parameter.End - parameter.Wrap) / 2;
    value -= std::floor((value - lowest) / parameter.Wrap) * parameter.Wrap;
  }
  const auto [low, high] = std::minmax(parameter.Start, parameter.End);
  return std::isfinite(value) ? std::clamp(value, low, high) : DefaultPoseValue(parameter);
}

SequencePlace PlaceOf(const Scene& scene, const SceneSequence& sequence, std::span<const float> poseParameters) {
  const AxisPlace column =
      PlaceOnAxis(sequence, 0, sequence.Columns, PoseValue(scene, sequence.PoseParameters[0], poseParameters));
  const AxisPlace row =
      PlaceOnAxis(sequence, 1, sequence.Rows, PoseValue(scene, sequence.PoseParameters[1], poseParameters));
  SequencePlace place;
  place.Across = column.Part;
  place.Down = row.Part;
  for (int32_t y = 0; y < 2; ++y) {
    for (int32_t x = 0; x < 2; ++x) {
      const int32_t entry = std::min(row.Index + y, sequence.Rows - 1) * sequence.Columns +
                            std::min(column.Index + x, sequence.Columns - 1);
      place.Animations[static_cast<size_t>(2 * y + x)] = sequence.Animations[static_cast<size_t>(entry)];
    }
  }
  return place;
}

SequenceTiming TimingOf(const Scene& scene, int32_t sequence, std::span<const float> poseParameters) {
  SequenceTiming timing;
  if (sequence < 0 || static_cast<size_t>(sequence) >= scene.Sequences.size()) return timing;
  const SceneSequence& record = scene.Sequences[static_cast<size_t>(sequence)];
  if (record.Animations.empty()) return timing;
  const SequencePlace place = PlaceOf(scene, record, poseParameters);
  const std::array<float, 4> weights = place.Weights();
  timing.Fps = 0;
  for (size_t i = 0; i < weights.size(); ++i) {
    const SceneAnimation& animation = scene.Animations[static_cast<size_t>(place.Animations[i])];
    timing.Fps += weights[i] * std::max(0.0f, animation.Fps);
    timing.LastFrame += weights[i] * static_cast<float>(animation.FrameCount - 1);
  }
  return timing;
}

float RampOf(const SceneAutoLayer& layer, float cycle) {
  if (layer.Start == layer.End) return 1;
  if (!(cycle >= layer.Start) || !(cycle < layer.End)) return 0;
  float ramp = 1;
  if (cycle < layer.Peak && layer.Peak != layer.Start) {
    ramp = (cycle - layer.Start) / (layer.Peak - layer.Start);
  } else if (cycle > layer.Tail && layer.End != layer.Tail) {
    ramp = (layer.End - cycle) / (layer.End - layer.Tail);
  }
  ramp = std::clamp(ramp, 0.0f, 1.0f);
  return (layer.Flags & LayerFlagSpline) != 0 ? ramp * ramp * (3 - 2 * ramp) : ramp;
}

}  // namespace tarnwick::view

#include "view/scene/view_state.h"

#include <algorithm>
#include <cmath>

#include "model/animation_records.h"
#include "view/scene/face.h"
#include "view/scene/sequence_place.h"

namespace tarnwick::view {

namespace {

bool CanPlay(const SceneSequence& sequence) {
  return !sequence.Animations.empty() && !sequence.IsDelta() && !sequence.IsPartial &&
         (sequence.Flags & model::SequenceFlagLayered) == 0;
}

/// Whether the sequence of `state` starts again at its end.
bool StartsAgain(const Scene& scene, const ViewState& state) {
  const auto number = static_cast<size_t>(state.Sequence);
  return state.Loops || (number < scene.Sequences.size() && scene.Sequences[number].IsLooping());
}

SequenceTiming TimingOf(const Scene& scene, const ViewState& state) {
  return TimingOf(scene, state.Sequence, state.PoseParameters);
}

}  // namespace

ViewState FirstViewOf(const Scene& scene, float aspect) {
  ViewState state;
  const auto first = std::find_if(scene.Sequences.begin(), scene.Sequences.end(), CanPlay);
  if (first != scene.Sequences.end()) state.Sequence = static_cast<int32_t>(first - scene.Sequences.begin());
  state.BodyGroups.resize(scene.BodyParts.size());
  for (const ScenePoseParameter& one : scene.PoseParameters) state.PoseParameters.push_back(DefaultPoseValue(one));
  for (const SceneFlexController& one : scene.FlexControllers) {
    state.FlexControllers.push_back(DefaultControllerValue(one));
  }
  ScenePose pose(scene);
  pose.Set(PoseOf(state));
  Box box = PosedBox(scene, pose.SkinMatrices(), state.BodyGroups, 0);
  if (box.IsEmpty()) {
    for (size_t i = 0; i < scene.Bones.size(); ++i) box.Add(pose.Bones()[i].Translation());
  }
  state.Eye.Yaw = 30;
  state.Eye.Pitch = 15;
  state.Eye.Frame(box, aspect);
  return state;
}

void Advance(const Scene& scene, ViewState& state, float seconds) {
  if (!state.IsPlaying || !std::isfinite(seconds)) return;
  const float played = seconds * state.Speed;
  state.Seconds += played;
  const SequenceTiming timing = TimingOf(scene, state);
  if (!(timing.LastFrame > 0)) return;
  const float cycle = state.Cycle + played * timing.Fps / timing.LastFrame;
  if (cycle >= 0 && cycle <= 1) {
    state.Cycle = cycle;
  } else if (StartsAgain(scene, state)) {
    state.Cycle = cycle - std::floor(cycle);
  } else {
    state.Cycle = cycle < 0 ? 0.0f : 1.0f;
    state.IsPlaying = false;
  }
}

float ShownFrame(const Scene& scene, const ViewState& state) {
  return state.Cycle * TimingOf(scene, state).LastFrame;
}

void ShowFrame(const Scene& scene, ViewState& state, float frame) {
  const float last = TimingOf(scene, state).LastFrame;
  state.Cycle = last > 0 && std::isfinite(frame) ? std::clamp(frame / last, 0.0f, 1.0f) : 0;
}

PoseRequest PoseOf(const ViewState& state) {
  PoseRequest request{state.Sequence, state.Cycle, state.PoseParameters, {}, true, state.Seconds, true, false};
  request.Ik = state.Ik;
  request.Swings = state.Swings && state.IsPlaying;
  for (const ViewLayer& layer : state.Layers) request.Layers.push_back({layer.Sequence, state.Cycle, layer.Weight});
  return request;
}

int32_t ShownLod(const Scene& scene, const ViewState& state, float height) {
  if (!state.FixedLod) return scene.LodAt(state.Eye.UnitPixels(height));
  return std::clamp(*state.FixedLod, 0, static_cast<int32_t>(scene.Lods.size()) - 1);
}

}  // namespace tarnwick::view

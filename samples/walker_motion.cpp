#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numbers>

#include "model/animation_records.h"
#include "walker.h"

namespace tarnwick::samples {

namespace {

using tests::AnimationDescription;
using tests::AxisRuns;
using tests::BoneAnimDescription;

constexpr double RotationScale = 0.0001;
constexpr double PositionScale = 0.01;

/// A value of an axis over one cycle, by the phase from 0 to 2 pi.
using Motion = std::function<double(double phase)>;

AxisRuns Sample(const Motion& motion, int frames, double scale) {
  tests::RunDescription run{.Values = {}, .Total = static_cast<uint8_t>(frames)};
  for (int frame = 0; frame < frames; ++frame) {
    const double phase = 2 * std::numbers::pi * frame / std::max(frames - 1, 1);
    run.Values.push_back(static_cast<int16_t>(std::lround(motion(phase) / scale)));
  }
  return {run};
}

/// A bone that swings about its Y axis.
BoneAnimDescription Swing(WalkerBone bone, int frames, const Motion& radians) {
  BoneAnimDescription anim{.Bone = bone};
  anim.RotationRuns = std::array<AxisRuns, 3>{AxisRuns{}, Sample(radians, frames, RotationScale), AxisRuns{}};
  return anim;
}

/// The pelvis, which goes up and down.
BoneAnimDescription Bob(int frames, const Motion& height) {
  BoneAnimDescription anim{.Bone = Pelvis};
  anim.PositionRuns = std::array<AxisRuns, 3>{AxisRuns{}, AxisRuns{}, Sample(height, frames, PositionScale)};
  return anim;
}

AnimationDescription Walk() {
  constexpr int Frames = 25;
  const auto swing = [](double reach, double shift) {
    return [=](double phase) { return reach * std::sin(phase + shift); };
  };
  // A knee bends while its leg comes forward; an elbow is always a little bent.
  const auto knee = [](double shift) {
    return [=](double phase) { return 0.15 + 0.7 * std::max(0.0, -std::cos(phase + shift)); };
  };
  const auto elbow = [](double shift) { return [=](double phase) { return -0.3 - 0.2 * std::sin(phase + shift); }; };
  constexpr double Half = std::numbers::pi;
  return {.Name = "walk_cycle",
          .Fps = 24,
          .Flags = model::AnimFlagLooping,
          .FrameCount = Frames,
          .Data = {.Bones = {Bob(Frames, [](double phase) { return -0.6 - 0.6 * std::cos(2 * phase); }),
                             Swing(Spine, Frames, [](double phase) { return 0.06 + 0.02 * std::cos(2 * phase); }),
                             Swing(RightArm, Frames, swing(0.45, Half)), Swing(RightForearm, Frames, elbow(0)),
                             Swing(LeftArm, Frames, swing(0.45, 0)), Swing(LeftForearm, Frames, elbow(Half)),
                             Swing(RightThigh, Frames, swing(0.5, 0)), Swing(RightCalf, Frames, knee(0)),
                             Swing(RightFoot, Frames, swing(0.2, Half)), Swing(LeftThigh, Frames, swing(0.5, Half)),
                             Swing(LeftCalf, Frames, knee(Half)), Swing(LeftFoot, Frames, swing(0.2, 0))}}};
}

AnimationDescription Idle() {
  constexpr int Frames = 31;
  return {.Name = "@idle",
          .Fps = 15,
          .Flags = model::AnimFlagLooping,
          .FrameCount = Frames,
          .Data = {.Bones = {Swing(Spine, Frames, [](double phase) { return 0.02 - 0.02 * std::cos(phase); }),
                             Swing(Head, Frames, [](double phase) { return 0.03 * std::sin(phase); })}}};
}

/// A nod that another sequence can lie under.
AnimationDescription Nod() {
  constexpr int Frames = 13;
  AnimationDescription nod{
      .Name = "@nod",
      .Fps = 24,
      .Flags = model::AnimFlagDelta,
      .FrameCount = Frames,
      .Data = {.Bones = {Swing(Head, Frames, [](double phase) { return 0.25 - 0.25 * std::cos(phase); })}}};
  nod.Data.Bones[0].IsDelta = true;
  return nod;
}

}  // namespace

void AddWalkerMotion(tests::ModelBuilder& model) {
  using namespace model;
  model.Animations = {Idle(), Walk(), Nod()};
  model.Sequences = {
      {.Label = "idle", .Activity = "ACT_IDLE", .ActivityWeight = 1, .Flags = SequenceFlagLooping, .Blends = {0}},
      {.Label = "walk",
       .Activity = "ACT_WALK",
       .ActivityWeight = 1,
       .Flags = SequenceFlagLooping,
       .Events = {{.Cycle = 0.25f, .Event = 6004, .Options = "walker.step_left"},
                  {.Cycle = 0.75f, .Event = 6004, .Options = "walker.step_right"}},
       .Blends = {1}},
      {.Label = "nod", .Flags = SequenceFlagDelta, .Blends = {2}},
  };
}

}  // namespace tarnwick::samples

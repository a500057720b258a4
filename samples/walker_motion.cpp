#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <string>
#include <utility>

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

/// The head turned to a side and up or down, one frame: a place of the grid of `look`.
AnimationDescription Look(const char* name, double yaw, double pitch) {
  BoneAnimDescription head{.Bone = Head};
  const auto held = [](double radians) { return Sample([=](double) { return radians; }, 1, RotationScale); };
  head.RotationRuns = std::array<AxisRuns, 3>{AxisRuns{}, held(pitch), held(yaw)};
  return {.Name = name, .FrameCount = 1, .Data = {.Bones = {head}}};
}

}  // namespace

void AddWalkerMotion(tests::ModelBuilder& model) {
  using namespace model;
  model.Animations = {Idle(), Walk(), Nod()};
  for (const auto& [row, pitch] : {std::pair{"up", -0.4}, {"ahead", 0.0}, {"down", 0.4}}) {
    for (const auto& [column, yaw] : {std::pair{"left", 0.9}, {"middle", 0.0}, {"right", -0.9}}) {
      model.Animations.push_back(Look((std::string("look_") + row + "_" + column).c_str(), yaw, pitch));
    }
  }
  model.PoseParameters = {{.Name = "look_yaw", .Start = -50, .End = 50},
                          {.Name = "look_pitch", .Start = -25, .End = 25}};
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
      // Places evenly from left to right, then from up to down.
      {.Label = "look",
       .Blends = {3, 4, 5, 6, 7, 8, 9, 10, 11},
       .BlendSize = {3, 3},
       .PoseParameter = {0, 1},
       .PoseStart = {50, -25},
       .PoseEnd = {-50, 25},
       .PoseKeys = {50, 0, -50, -25, 0, 25}},
      // Nods once while it walks: the nod comes in over 6 frames and is gone at the end.
      {.Label = "walk_nodding",
       .Activity = "ACT_WALK_RELAXED",
       .ActivityWeight = 1,
       .Flags = SequenceFlagLooping,
       .Blends = {1},
       .Layers = {{2, 0, 0, 0, 0.25f, 0.75f, 1}}},
  };
  for (auto& sequence : model.Sequences) sequence.FadeIn = sequence.FadeOut = 0.2f;
}

}  // namespace tarnwick::samples

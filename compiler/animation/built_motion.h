#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "model/animation_records.h"
#include "model/script_records.h"
#include "qc/words.h"

namespace tarnwick::compiler {

/// Where a bone stands in one frame, in its parent's space: a place, and angles about X, Y and Z in radians. In a delta
/// animation the change against the base.
struct BonePose {
  std::array<float, 3> Position = {0, 0, 0};
  std::array<float, 3> Angles = {0, 0, 0};
};

/// A rule of inverse kinematics. `Errors` holds six values for each frame from `FirstErrorFrame` on: place and angles.
struct BuiltIkRule {
  model::StudioIkRule Record = {};
  std::vector<std::array<float, 6>> Errors;
};

struct BuiltAnimation {
  std::string Name;
  qc::Place At;
  float Fps = 30;
  bool Loops = false;
  bool Delta = false;
  int32_t FrameCount = 1;
  std::vector<BonePose> Poses;  // a pose for each bone, frame after frame
  std::vector<model::StudioMovement> Movements;
  std::vector<BuiltIkRule> IkRules;
  bool InModelFile = false;  // also where other animations go to a block file
  bool OnlyBase = false;     // nothing but subtraction uses it, and it is the rest pose: it is not written

  BonePose& Pose(int32_t frame, size_t bone, size_t bones) { return Poses[static_cast<size_t>(frame) * bones + bone]; }
  const BonePose& Pose(int32_t frame, size_t bone, size_t bones) const {
    return Poses[static_cast<size_t>(frame) * bones + bone];
  }
};

struct BuiltEvent {
  float Cycle = 0;
  int32_t Number = 0;
  std::string Name;  // empty: by number
  std::string Options;
};

struct BuiltSequence {
  std::string Label, Activity;
  qc::Place At;
  int32_t ActivityWeight = 0;
  uint32_t Flags = 0;
  std::array<model::Vec3, 2> Box = {};
  std::vector<int32_t> Animations;  // row after row
  int32_t Columns = 1, Rows = 1;
  std::array<int32_t, 2> PoseParameters = {-1, -1};
  std::array<float, 2> PoseStart = {0, 0}, PoseEnd = {0, 0};
  std::vector<float> PoseKeys;
  float FadeIn = 0.2f, FadeOut = 0.2f;
  int32_t EntryNode = 0, ExitNode = 0, NodeFlags = 0;
  float ExitPhase = 0;
  int32_t CyclePose = 0;
  std::vector<BuiltEvent> Events;
  std::vector<model::StudioAutoLayer> Layers;
  std::vector<model::StudioIkLock> IkLocks;
  std::vector<float> Weights;  // of each bone; empty in a declared sequence
  std::string KeyValues;
  std::vector<std::string> ActivityModifiers;
  int32_t MostIkRules = 0;
};

struct BuiltPoseParameter {
  std::string Name;
  float Start = 0, End = 0, Wrap = 0;
  bool Loops = false;
};

/// All that moves.
struct BuiltMotion {
  std::vector<BuiltAnimation> Animations;
  std::vector<BuiltSequence> Sequences;
  std::vector<std::string> Nodes;
  std::vector<uint8_t> NodeTable;  // a row for each node
  std::vector<BuiltPoseParameter> PoseParameters;
};

}  // namespace tarnwick::compiler

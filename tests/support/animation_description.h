#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/animation_records.h"
#include "model/script_records.h"

namespace tarnwick::tests {

// The animations and sequences of a model of the model writer.

/// A run: values of its first frames; the last of them holds up to frame `Total`.
struct RunDescription {
  std::vector<int16_t> Values = {};
  uint8_t Total = 0;
};

/// The runs of an axis, one behind the other; an empty list for an axis without runs.
using AxisRuns = std::vector<RunDescription>;

/// The data of one bone. What is there sets the record's flags and the order of its payload.
struct BoneAnimDescription {
  uint8_t Bone = 0;
  std::optional<std::array<uint16_t, 3>> Rotation48 = {};
  std::optional<uint64_t> Rotation64 = {};
  std::optional<std::array<AxisRuns, 3>> RotationRuns = {};
  std::optional<std::array<float, 3>> RawPosition = {};  // stored as half-floats
  std::optional<std::array<AxisRuns, 3>> PositionRuns = {};
  bool IsDelta = false;
};

/// The data of an animation or of one of its sections.
struct AnimDataDescription {
  std::vector<BoneAnimDescription> Bones = {};
  int32_t Block = 0;  // 0 in the .mdl file, -1 no data, else the number of a block of the .ani file
};

struct AnimationDescription {
  std::string Name = "@idle";
  float Fps = 30;
  uint32_t Flags = 0;
  int32_t FrameCount = 1;
  AnimDataDescription Data = {};
  int32_t SectionFrames = 0;
  std::vector<AnimDataDescription> Sections = {};
  std::vector<model::StudioMovement> Movements = {};
  std::vector<model::StudioIkRule> IkRules = {};
};

struct EventDescription {
  float Cycle = 0;
  int32_t Event = 0;
  std::string Options = {};
  std::string Name = {};
};

struct SequenceDescription {
  std::string Label = "idle";
  std::string Activity = {};
  int32_t ActivityWeight = 0;
  uint32_t Flags = 0;
  std::vector<EventDescription> Events = {};
  std::vector<int16_t> Blends = {0};          // animation numbers, row after row
  std::array<int32_t, 2> BlendSize = {1, 1};  // columns, rows
  std::array<int32_t, 2> PoseParameter = {-1, -1};
  std::array<float, 2> PoseStart = {0, 0};
  std::array<float, 2> PoseEnd = {0, 0};
  int32_t EntryNode = 0;
  int32_t ExitNode = 0;
  int32_t NodeFlags = 0;
  std::vector<float> PoseKeys = {};
  float FadeIn = 0;
  float FadeOut = 0;
  std::vector<model::StudioAutoLayer> Layers = {};
  std::vector<float> Weights = {};  // of each bone; empty for a sequence without a list
  std::vector<model::StudioIkLock> IkLocks = {};
};

}  // namespace tarnwick::tests

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/text_writer.h"
#include "decompiler/writers/model_names.h"
#include "model/animation_check.h"
#include "model/bone_math_types.h"
#include "model/loaded_model.h"

namespace tarnwick::decompiler {

/// Radians by which models have their root bones turned about Z against the sources, but for static ones.
inline constexpr float RootTurnZ = 1.57079632679f;

/// What all animation files of a job have in common, made once.
struct AnimationSmdModel {
  core::RecordArray<StudioBone> Bones;
  std::string Head;                     // all lines before the first time block
  std::vector<Matrix3x4> DefaultPoses;  // of each bone, in its parent's space
  bool TurnRoots = true;                // root bones are turned by 270 degrees about Z
  Matrix3x4 RootTurn;                   // that turn
};

/// Makes it for a model with these bones.
[[nodiscard]] std::shared_ptr<const AnimationSmdModel> MakeAnimationSmdModel(const Skeleton& skeleton, bool turnRoots);

/// What was typed for the rotation `packed` of `bone`, which stands still and was read out of 48 or 64 bits, where that
/// can be found: likelier than what the packing left of it, and with no more digits than it has. As in the animation's
/// file, less the turn of roots.
[[nodiscard]] std::optional<EulerAngles> TypedAnglesOf(const AnimationSmdModel& model, const StudioBone& bone,
                                                       const Quat& packed);

/// Bytes that its head may well have.
[[nodiscard]] int64_t AnimationHeadSize(const Skeleton& skeleton);

/// Bytes that a file of `blocks` time blocks may well have, in whole lines of ordinary numbers.
[[nodiscard]] int64_t AnimationSmdSize(const AnimationSmdModel& model, int64_t blocks);

/// The content of a bind pose file: time blocks 0 and 1 with every bone's default pose, roots turned only if `turned`.
void WriteBindPoseSmd(core::TextWriter& writer, const AnimationSmdModel& model, bool turned = false);

/// How far the whole model has travelled at the end of a part of an animation.
struct TravelPart {
  int32_t LastFrame = 0;
  Vec3 Position = {};  // from the animation's start
  float StartSpeed = 0, EndSpeed = 0;
  uint32_t Axes = 0;  // MovementFlags: those that were taken out of the first root
};

/// What an animation's file holds.
struct AnimationSmdForm {
  bool OnDefaultPose = false;           // a delta animation is shown applied to the default pose
  bool FirstFrameTwice = true;          // frame 0 stands before all frames once more
  bool ExactWhereStill = false;         // numbers that come out of no runs read as the very floats that they are
  std::vector<TravelPart> Travel = {};  // put back into the roots' positions; in rising order of frames
  bool AnglesNearRest = false;          // of bones that point nearly straight up or down those nearest the rest angles
};

/// The content of an animation's file.
void WriteAnimationSmd(core::TextWriter& writer, const AnimationSmdModel& model, const CheckedAnimation& animation,
                       const AnimationSmdForm& form);

}  // namespace tarnwick::decompiler

#pragma once

#include <cstddef>
#include <cstdint>

#include "model/bone_math_types.h"

namespace tarnwick::model {

// The records of an .mdl file that become plain statements of the QC script.
#pragma pack(push, 1)

/// A value that steers sequences of several animations, such as the direction of a walk.
struct StudioPoseParameter {
  int32_t NameOffset;  // 0x00
  int32_t Flags;       // 0x04 PoseParameterFlag bits
  float Start;         // 0x08
  float End;           // 0x0C
  float Wrap;          // 0x10 wrap length, 0 for none
};
inline constexpr int32_t PoseParameterFlagLoop = 1;
static_assert(sizeof(StudioPoseParameter) == 20);

/// A named set of hit boxes; the game uses one at a time.
struct StudioHitboxSet {
  int32_t NameOffset;    // 0x00
  int32_t HitboxCount;   // 0x04
  int32_t HitboxOffset;  // 0x08 StudioHitbox
};
static_assert(sizeof(StudioHitboxSet) == 12);

/// A box in a bone's space in which shots hit.
struct StudioHitbox {
  int32_t Bone;        // 0x00
  int32_t Group;       // 0x04
  Vec3 Minimum;        // 0x08
  Vec3 Maximum;        // 0x14
  int32_t NameOffset;  // 0x20 from this record, 0 for none; in some files it leads nowhere
  char Unused24[0x44 - 0x24];
};
static_assert(offsetof(StudioHitbox, NameOffset) == 0x20 && sizeof(StudioHitbox) == 68);

/// A named place on a bone, for things that are held and for effects.
struct StudioAttachment {
  int32_t NameOffset;   // 0x00
  uint32_t Flags;       // 0x04
  int32_t Bone;         // 0x08
  Matrix3x4 Placement;  // 0x0C in the bone's space
  char Unread3C[0x5C - 0x3C];
};
static_assert(offsetof(StudioAttachment, Placement) == 0x0C && sizeof(StudioAttachment) == 92);

/// Another model whose sequences this one uses.
struct StudioIncludeModel {
  int32_t LabelOffset;  // 0x00
  int32_t NameOffset;   // 0x04 file name
};
static_assert(sizeof(StudioIncludeModel) == 8);

/// A limb whose end can be held in place: three bones, by its links.
struct StudioIkChain {
  int32_t NameOffset;  // 0x00
  int32_t Type;        // 0x04
  int32_t LinkCount;   // 0x08
  int32_t LinkOffset;  // 0x0C StudioIkLink
};
static_assert(sizeof(StudioIkChain) == 16);

/// One bone of a limb.
struct StudioIkLink {
  int32_t Bone;        // 0x00
  Vec3 KneeDirection;  // 0x04
  Vec3 Unread10;
};
static_assert(sizeof(StudioIkLink) == 28);

/// An end of a limb that goes back to where it was: of a sequence, or of all that always play.
struct StudioIkLock {
  int32_t Chain;         // 0x00
  float PositionWeight;  // 0x04
  float RotationWeight;  // 0x08
  int32_t Flags;         // 0x0C 0 in files seen
  int32_t Unused10[4];
};
static_assert(sizeof(StudioIkLock) == 32);

#pragma pack(pop)

}  // namespace tarnwick::model

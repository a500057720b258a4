#pragma once

#include <cstddef>
#include <cstdint>

#include "model/bone_math_types.h"

namespace tarnwick::model {

// The records of an .mdl file that hold its sequences and animations.
#pragma pack(push, 1)

/// One animation.
struct StudioAnimDesc {
  int32_t HeaderOffset;          // 0x00 back to the StudioHeader (negative)
  int32_t NameOffset;            // 0x04
  float Fps;                     // 0x08
  uint32_t Flags;                // 0x0C
  int32_t FrameCount;            // 0x10
  int32_t MovementCount;         // 0x14
  int32_t MovementOffset;        // 0x18 StudioMovement
  float Unread1C[6];             // a box, in files of version 44
  int32_t Block;                 // 0x34 0 this file, -1 no data, else a block of the animation block file
  int32_t DataOffset;            // 0x38 first StudioAnim: from this record (block 0) or from the block's start
  int32_t IkRuleCount;           // 0x3C
  int32_t IkRuleOffset;          // 0x40 StudioIkRule
  int32_t BlockIkRuleOffset;     // 0x44 their place in the block, for an animation of the block file
  int32_t LocalHierarchyCount;   // 0x48 0 in files seen
  int32_t LocalHierarchyOffset;  // 0x4C
  int32_t SectionOffset;         // 0x50 StudioAnimSection
  int32_t SectionFrames;         // 0x54 frames a section, 0 without sections
  int16_t ZeroFrameSpan;         // 0x58 cleared when an old block file is upgraded
  int16_t ZeroFrameCount;        // 0x5A
  int32_t ZeroFrameOffset;       // 0x5C cleared when an old block file is upgraded
  int32_t Unread60;
};
inline constexpr uint32_t AnimFlagLooping = 0x1;
inline constexpr uint32_t AnimFlagDelta = 0x4;
static_assert(offsetof(StudioAnimDesc, Block) == 0x34 && offsetof(StudioAnimDesc, SectionOffset) == 0x50);
static_assert(offsetof(StudioAnimDesc, ZeroFrameOffset) == 0x5C && sizeof(StudioAnimDesc) == 100);

/// What the model itself travels up to a frame, taken out of the root's track.
struct StudioMovement {
  int32_t LastFrame;  // 0x00
  uint32_t Flags;     // 0x04 MovementFlag bits: the axes
  float StartSpeed;   // 0x08
  float EndSpeed;     // 0x0C
  float Angle;        // 0x10 degrees about Z, at the end
  Vec3 Direction;     // 0x14 of the movement
  Vec3 Position;      // 0x20 reached at the end, from the animation's start
};
/// Axes of a movement: taken out as they stand, or linearly.
inline constexpr uint32_t MovementFlagX = 0x1;
inline constexpr uint32_t MovementFlagY = 0x2;
inline constexpr uint32_t MovementFlagZ = 0x4;
inline constexpr uint32_t MovementFlagLinearX = 0x40;
inline constexpr uint32_t MovementFlagLinearY = 0x80;
inline constexpr uint32_t MovementFlagLinearZ = 0x100;
static_assert(sizeof(StudioMovement) == 44);

/// Where the end of a limb is held during a part of an animation.
struct StudioIkRule {
  int32_t Number;       // 0x00
  int32_t Type;         // 0x04 IkRuleType
  int32_t Chain;        // 0x08
  int32_t Bone;         // 0x0C -1 for none
  int32_t Slot;         // 0x10 the chain in files seen
  float Height;         // 0x14 these up to the rotation are 0 in files seen
  float Radius;         // 0x18
  float Floor;          // 0x1C
  Vec3 Position;        // 0x20
  Quat Rotation;        // 0x2C
  int32_t ErrorOffset;  // 0x3C StudioIkErrors, 0 for none
  int32_t Unused40[3];
  float Start, Peak, Tail, End;  // 0x4C parts of the animation
  float Unused5C;
  float Contact;  // 0x60 part of the animation
  char Unused64[0x98 - 0x64];
};
inline constexpr int32_t IkRuleTouch = 1;
inline constexpr int32_t IkRuleRelease = 4;
static_assert(offsetof(StudioIkRule, ErrorOffset) == 0x3C && offsetof(StudioIkRule, Start) == 0x4C);
static_assert(offsetof(StudioIkRule, Contact) == 0x60 && sizeof(StudioIkRule) == 152);

/// How far a limb's end is from where a rule holds it, frame by frame: six run streams.
struct StudioIkErrors {
  float Scale[6];     // 0x00 position, then rotation
  int16_t Offset[6];  // 0x18 from this record
};
static_assert(sizeof(StudioIkErrors) == 36);

/// The data of one section of an animation, with the meanings of StudioAnimDesc's Block and DataOffset.
struct StudioAnimSection {
  int32_t Block;
  int32_t DataOffset;
};
static_assert(sizeof(StudioAnimSection) == 8);

/// The head of the data of one animated bone; the payload follows at byte 4.
struct StudioAnim {
  uint8_t Bone;        // 0
  uint8_t Flags;       // 1
  int16_t NextOffset;  // 2 from this record, 0 for the last
};
inline constexpr uint8_t AnimRawPosition = 0x01;    // three half-floats
inline constexpr uint8_t AnimRawRotation48 = 0x02;  // 6 bytes
inline constexpr uint8_t AnimRunPosition = 0x04;    // StudioRunOffsets
inline constexpr uint8_t AnimRunRotation = 0x08;    // StudioRunOffsets
inline constexpr uint8_t AnimIsDelta = 0x10;        // the bone's defaults are not added
inline constexpr uint8_t AnimRawRotation64 = 0x20;  // 8 bytes
static_assert(sizeof(StudioAnim) == 4);

/// Where the runs of each axis begin, from the start of this triple; below 1 for an axis without runs.
struct StudioRunOffsets {
  int16_t Axis[3];
};
static_assert(sizeof(StudioRunOffsets) == 6);

/// The head of a run. `Valid` int16 values follow; the run covers `Total` frames, and those past the values repeat the
/// last one. A Total of 0 ends the stream.
struct StudioRunHead {
  uint8_t Valid;
  uint8_t Total;
};
static_assert(sizeof(StudioRunHead) == 2);

/// One sequence.
struct StudioSeqDesc {
  int32_t HeaderOffset;    // 0x00
  int32_t LabelOffset;     // 0x04
  int32_t ActivityOffset;  // 0x08 name of the activity
  uint32_t Flags;          // 0x0C
  int32_t Activity;        // 0x10
  int32_t ActivityWeight;  // 0x14
  int32_t EventCount;      // 0x18
  int32_t EventOffset;     // 0x1C StudioEvent
  Vec3 Minimum;            // 0x20 box of all frames
  Vec3 Maximum;            // 0x2C
  int32_t BlendCount;      // 0x38
  int32_t BlendOffset;     // 0x3C StudioShort: animation numbers, row after row
  int32_t Unread40;
  int32_t BlendSize[2];      // 0x44 columns, rows
  int32_t PoseParameter[2];  // 0x4C of each blend axis, -1 for none
  float PoseStart[2];        // 0x54 lowest value of each axis
  float PoseEnd[2];          // 0x5C highest value of each axis
  int32_t Unused64;
  float FadeIn;       // 0x68 seconds
  float FadeOut;      // 0x6C
  int32_t EntryNode;  // 0x70 one-based, 0 for none
  int32_t ExitNode;   // 0x74 one-based
  int32_t NodeFlags;  // 0x78 not 0: the transition runs both ways
  float EntryPhase;   // 0x7C 0 in files seen, like all up to 0x8F
  float ExitPhase;    // 0x80
  int32_t Unused84[3];
  int32_t IkRuleCount;             // 0x90 the most of any of its animations
  int32_t LayerCount;              // 0x94
  int32_t LayerOffset;             // 0x98 StudioAutoLayer
  int32_t WeightOffset;            // 0x9C a float for each bone
  int32_t PoseKeyOffset;           // 0xA0 floats: columns, then rows; 0 for none
  int32_t IkLockCount;             // 0xA4
  int32_t IkLockOffset;            // 0xA8 StudioIkLock
  int32_t KeyValueOffset;          // 0xAC text
  int32_t KeyValueSize;            // 0xB0 0 for none
  int32_t CyclePose;               // 0xB4 supposed: the pose parameter that drives the cycle; 0 in files seen
  int32_t ActivityModifierOffset;  // 0xB8 StudioOffset from this record's start, supposed
  int32_t ActivityModifierCount;   // 0xBC 0 in files seen
  int32_t UnusedC0[5];
};
inline constexpr uint32_t SequenceFlagSnap = 0x2;
/// Layered behind the others. With it a delta is the script's "delta", without it "predelta" (of 162 sequences that are
/// deltas 151 have it, and of those that have it alone all are in world space).
inline constexpr uint32_t SequenceFlagLayered = 0x10;
inline constexpr uint32_t SequenceFlagRealtime = 0x100;
inline constexpr uint32_t SequenceFlagCalcBlend = 0x200;
inline constexpr uint32_t SequenceFlagHidden = 0x400;
inline constexpr uint32_t SequenceFlagDeclared = 0x800;  // a name alone: an included model holds the sequence
inline constexpr uint32_t SequenceFlagWorldSpace = 0x4000;
static_assert(offsetof(StudioSeqDesc, FadeIn) == 0x68 && offsetof(StudioSeqDesc, LayerCount) == 0x94);
static_assert(offsetof(StudioSeqDesc, IkLockCount) == 0xA4 && offsetof(StudioSeqDesc, ActivityModifierCount) == 0xBC);

/// A sequence that plays on top of another one.
struct StudioAutoLayer {
  int16_t Sequence;              // 0x00
  int16_t PoseParameter;         // 0x02
  uint32_t Flags;                // 0x04 0, or 0x1000 in files seen
  float Start, Peak, Tail, End;  // 0x08 parts of the sequence; all 0 for its whole length
};
static_assert(sizeof(StudioAutoLayer) == 24);
inline constexpr uint32_t LayerFlagLocal = 0x1000;  // supposed: the layer has a time of its own
inline constexpr uint32_t SequenceFlagLooping = 0x1;
inline constexpr uint32_t SequenceFlagDelta = 0x4;
inline constexpr uint32_t SequenceFlagAutoplay = 0x8;
inline constexpr uint32_t SequenceFlagPost = 0x20;  // a delta too
static_assert(offsetof(StudioSeqDesc, BlendCount) == 0x38 && offsetof(StudioSeqDesc, BlendSize) == 0x44);
static_assert(offsetof(StudioSeqDesc, PoseParameter) == 0x4C && offsetof(StudioSeqDesc, EntryNode) == 0x70);
static_assert(offsetof(StudioSeqDesc, PoseKeyOffset) == 0xA0 && sizeof(StudioSeqDesc) == 212);

/// What happens at one moment of a sequence: a sound, a muzzle flash, a footstep.
struct StudioEvent {
  float Cycle;         // 0x00 position in the sequence, 0 to 1
  int32_t Event;       // 0x04 number, 0 if it goes by name
  int32_t Type;        // 0x08
  char Options[64];    // 0x0C
  int32_t NameOffset;  // 0x4C
};
static_assert(offsetof(StudioEvent, NameOffset) == 0x4C && sizeof(StudioEvent) == 80);

#pragma pack(pop)

}  // namespace tarnwick::model

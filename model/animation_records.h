#pragma once

#include <cstddef>
#include <cstdint>

#include "model/bone_math_types.h"

namespace tarnwick::model {

// The records of an .mdl file that hold its sequences and animations.
#pragma pack(push, 1)

/// One animation.
struct StudioAnimDesc {
  int32_t HeaderOffset;  // 0x00 back to the StudioHeader (negative)
  int32_t NameOffset;    // 0x04
  float Fps;             // 0x08
  uint32_t Flags;        // 0x0C
  int32_t FrameCount;    // 0x10
  char Unread14[0x34 - 0x14];
  int32_t Block;       // 0x34 0 this file, -1 no data, else a block of the animation block file
  int32_t DataOffset;  // 0x38 first StudioAnim: from this record (block 0) or from the block's start
  char Unread3C[0x50 - 0x3C];
  int32_t SectionOffset;    // 0x50 StudioAnimSection
  int32_t SectionFrames;    // 0x54 frames a section, 0 without sections
  int16_t ZeroFrameSpan;    // 0x58 cleared when an old block file is upgraded
  int16_t ZeroFrameCount;   // 0x5A
  int32_t ZeroFrameOffset;  // 0x5C cleared when an old block file is upgraded
  int32_t Unread60;
};
inline constexpr uint32_t AnimFlagLooping = 0x1;
inline constexpr uint32_t AnimFlagDelta = 0x4;
static_assert(offsetof(StudioAnimDesc, Block) == 0x34 && offsetof(StudioAnimDesc, SectionOffset) == 0x50);
static_assert(offsetof(StudioAnimDesc, ZeroFrameOffset) == 0x5C && sizeof(StudioAnimDesc) == 100);

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
  char Unread20[0x38 - 0x20];
  int32_t BlendCount;   // 0x38
  int32_t BlendOffset;  // 0x3C StudioShort: animation numbers, row after row
  int32_t Unread40;
  int32_t BlendSize[2];      // 0x44 columns, rows
  int32_t PoseParameter[2];  // 0x4C of each blend axis, -1 for none
  float PoseStart[2];        // 0x54 lowest value of each axis
  float PoseEnd[2];          // 0x5C highest value of each axis
  char Unread64[0x70 - 0x64];
  int32_t EntryNode;  // 0x70 one-based, 0 for none
  int32_t ExitNode;   // 0x74 one-based
  int32_t NodeFlags;  // 0x78 not 0: the transition runs both ways
  char Unread7C[0xA0 - 0x7C];
  int32_t PoseKeyOffset;  // 0xA0 floats, 0 for none
  char UnreadA4[0xD4 - 0xA4];
};
inline constexpr uint32_t SequenceFlagLooping = 0x1;
inline constexpr uint32_t SequenceFlagDelta = 0x4;
inline constexpr uint32_t SequenceFlagAutoplay = 0x8;
inline constexpr uint32_t SequenceFlagPost = 0x20;  // a delta too
static_assert(offsetof(StudioSeqDesc, BlendCount) == 0x38 && offsetof(StudioSeqDesc, BlendSize) == 0x44);
static_assert(offsetof(StudioSeqDesc, PoseParameter) == 0x4C && offsetof(StudioSeqDesc, EntryNode) == 0x70);
static_assert(offsetof(StudioSeqDesc, PoseKeyOffset) == 0xA0 && sizeof(StudioSeqDesc) == 212);

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

#pragma once

#include <cstddef>
#include <cstdint>

#include "model/bone_math_types.h"

namespace tarnwick::model {

// The records of an .mdl file that hold its skeleton and its meshes. All values are little-endian; an `Offset` field
// counts bytes from the start of the record that holds it (in StudioHeader from the file's start) and may be negative.
// Bytes that this program does not read stand as Unread; what is 0 in every file seen stands as Unused.
#pragma pack(push, 1)

/// At the start of the file.
struct StudioHeader {
  char Id[4];                    // 0x00 "IDST"
  int32_t Version;               // 0x04 44 to 49 in files seen
  int32_t Checksum;              // 0x08 that of the model's other files too
  char Name[64];                 // 0x0C the model's own name
  int32_t Length;                // 0x4C bytes of the file
  Vec3 EyePosition;              // 0x50
  Vec3 IllumPosition;            // 0x5C
  Vec3 HullMinimum;              // 0x68 the box of the first sequence, unless the script gave one
  Vec3 HullMaximum;              // 0x74
  Vec3 ViewMinimum;              // 0x80 zero, unless the script gave a clipping box
  Vec3 ViewMaximum;              // 0x8C
  uint32_t Flags;                // 0x98 ModelFlag bits
  int32_t BoneCount;             // 0x9C
  int32_t BoneOffset;            // 0xA0 StudioBone
  int32_t BoneControllerCount;   // 0xA4 0 in files seen
  int32_t BoneControllerOffset;  // 0xA8
  int32_t HitboxSetCount;        // 0xAC
  int32_t HitboxSetOffset;       // 0xB0 StudioHitboxSet
  int32_t AnimCount;             // 0xB4
  int32_t AnimOffset;            // 0xB8 StudioAnimDesc
  int32_t SequenceCount;         // 0xBC
  int32_t SequenceOffset;        // 0xC0 StudioSeqDesc
  int32_t UnusedC4[2];
  int32_t TextureCount;             // 0xCC not needed: meshes and skins give the numbers
  int32_t TextureOffset;            // 0xD0 StudioTexture
  int32_t MaterialDirectoryCount;   // 0xD4
  int32_t MaterialDirectoryOffset;  // 0xD8 int32 offsets, from the header, of strings
  int32_t SkinReferenceCount;       // 0xDC textures a family
  int32_t SkinFamilyCount;          // 0xE0
  int32_t SkinOffset;               // 0xE4 int16 texture numbers, family after family
  int32_t BodyPartCount;            // 0xE8
  int32_t BodyPartOffset;           // 0xEC StudioBodyPart
  int32_t AttachmentCount;          // 0xF0
  int32_t AttachmentOffset;         // 0xF4 StudioAttachment
  int32_t NodeCount;                // 0xF8
  int32_t NodeOffset;               // 0xFC bytes, a row of NodeCount for each node: j + 1 where a sequence leads to it
  int32_t NodeNameOffset;           // 0x100 int32 offsets, from the header, of strings
  int32_t FlexDescCount;            // 0x104
  int32_t FlexDescOffset;           // 0x108 StudioFlexDesc
  int32_t FlexControllerCount;      // 0x10C
  int32_t FlexControllerOffset;     // 0x110 StudioFlexController
  int32_t FlexRuleCount;            // 0x114
  int32_t FlexRuleOffset;           // 0x118 StudioFlexRule
  int32_t IkChainCount;             // 0x11C
  int32_t IkChainOffset;            // 0x120 StudioIkChain
  int32_t MouthCount;               // 0x124
  int32_t MouthOffset;              // 0x128 StudioMouth
  int32_t PoseParameterCount;       // 0x12C
  int32_t PoseParameterOffset;      // 0x130 StudioPoseParameter
  int32_t SurfacePropOffset;        // 0x134 string
  int32_t KeyValueOffset;           // 0x138 text
  int32_t KeyValueSize;             // 0x13C 0 for none
  int32_t IkLockCount;              // 0x140 of all sequences that always play
  int32_t IkLockOffset;             // 0x144 StudioIkLock
  float Mass;                       // 0x148 of the collision model, 1 without one
  int32_t Contents;                 // 0x14C
  int32_t IncludeModelCount;        // 0x150
  int32_t IncludeModelOffset;       // 0x154 StudioIncludeModel
  int32_t Unread158;
  int32_t AnimBlockNameOffset;  // 0x15C string
  int32_t AnimBlockCount;       // 0x160
  int32_t AnimBlockOffset;      // 0x164 StudioAnimBlock
  int32_t AnimBlockSlot;        // 0x168 0 in a file; what is loaded stands beside the image
  int32_t BoneNameTableOffset;  // 0x16C one byte a bone: the bones' numbers by their names
  int32_t VertexSlot;           // 0x170 0 in a file; what is loaded stands beside the image
  int32_t Unused174;
  uint8_t ConstantLight;    // 0x178 supposed: the constant directional light
  uint8_t RootLod;          // 0x179 supposed: the finest level of detail that is kept
  uint8_t AllowedRootLods;  // 0x17A supposed
  uint8_t Unused17B;
  int32_t ZeroFrameCacheIndex;  // 0x17C cleared when an old block file is upgraded
  int32_t FlexControlCount;     // 0x180 version 48 on
  int32_t FlexControlOffset;    // 0x184 StudioFlexControl
  int32_t Unused188[2];
  int32_t SecondHeaderOffset;  // 0x190 StudioSecondHeader, version 48 on; 0 for none
  int32_t Unused194;
};
/// The hit boxes were made from the vertices; the script had none.
inline constexpr uint32_t ModelFlagGeneratedHitboxes = 0x1;
inline constexpr uint32_t ModelFlagOpaque = 0x4;
inline constexpr uint32_t ModelFlagMostlyOpaque = 0x8;
/// One bone that never moves; the compiler has turned the meshes.
inline constexpr uint32_t ModelFlagStatic = 0x10;
/// The last level of detail is the shadow's.
inline constexpr uint32_t ModelFlagShadowLod = 0x40;
static_assert(offsetof(StudioHeader, Flags) == 0x98 && offsetof(StudioHeader, NodeOffset) == 0xFC);
static_assert(offsetof(StudioHeader, IkLockCount) == 0x140 && offsetof(StudioHeader, BoneNameTableOffset) == 0x16C);
static_assert(offsetof(StudioHeader, ConstantLight) == 0x178 && offsetof(StudioHeader, FlexControlCount) == 0x180);
static_assert(offsetof(StudioHeader, SecondHeaderOffset) == 0x190);
static_assert(offsetof(StudioHeader, EyePosition) == 0x50 && offsetof(StudioHeader, BoneCount) == 0x9C);
static_assert(offsetof(StudioHeader, TextureOffset) == 0xD0 && offsetof(StudioHeader, BodyPartCount) == 0xE8);
static_assert(offsetof(StudioHeader, NodeNameOffset) == 0x100 && offsetof(StudioHeader, MouthCount) == 0x124);
static_assert(offsetof(StudioHeader, KeyValueSize) == 0x13C && offsetof(StudioHeader, IncludeModelOffset) == 0x154);
static_assert(offsetof(StudioHeader, AnimBlockNameOffset) == 0x15C && offsetof(StudioHeader, VertexSlot) == 0x170);
static_assert(offsetof(StudioHeader, ZeroFrameCacheIndex) == 0x17C && sizeof(StudioHeader) == 0x198);

/// Behind the header from version 48 on.
struct StudioSecondHeader {
  int32_t SourceBoneCount;   // 0x00
  int32_t SourceBoneOffset;  // 0x04 StudioSourceBone, from the file's start
  int32_t IllumAttachment;   // 0x08 supposed: attachment of the illumination position, one-based; 0 in files seen
  float MaxEyeDeflection;    // 0x0C cosine of the largest turn of an eye; 0 where none was given
  int32_t BoneColumnOffset;  // 0x10 from this record, 0 for none
  int32_t NameOffset;        // 0x14 the model's name in full, from this record; 0 in the older form
  char Unused18[0x100 - 0x18];
};
static_assert(offsetof(StudioSecondHeader, NameOffset) == 0x14 && sizeof(StudioSecondHeader) == 0x100);

/// A bone as a source had it, where the script's definition of the bone moved it.
struct StudioSourceBone {
  int32_t NameOffset;     // 0x00
  Matrix3x4 Matrices[2];  // 0x04, 0x34
};
static_assert(sizeof(StudioSourceBone) == 100);

/// One bone. A parent stands before its children in every sound file.
struct StudioBone {
  int32_t NameOffset;         // 0x00
  int32_t Parent;             // 0x04 -1 for a root
  int32_t Controllers[6];     // 0x08 -1 for none
  Vec3 Position;              // 0x20 default, in the parent's space
  Quat Rotation;              // 0x2C default
  EulerAngles Angles;         // 0x3C default, radians
  Vec3 PositionScale;         // 0x48 worth of one run value of a position axis
  Vec3 RotationScale;         // 0x54 the same for a rotation axis, radians
  Matrix3x4 PoseToBone;       // 0x60 from the model's pose space to the bone's space
  Quat Alignment;             // 0x90
  uint32_t Flags;             // 0xA0
  int32_t ProceduralType;     // 0xA4 BoneProcedure, 0 for none
  int32_t ProceduralOffset;   // 0xA8 StudioDrivenBone or StudioJiggleBone, 0 for none
  int32_t PhysicsSolid;       // 0xAC of the collision model
  int32_t SurfacePropOffset;  // 0xB0 string
  int32_t Contents;           // 0xB4
  int32_t UnusedB8[8];
};
/// What moves a bone beside the animations.
inline constexpr int32_t BoneProcedureDriven = 2;
inline constexpr int32_t BoneProcedureJiggle = 5;
/// Who uses the bone; each is set for its parents too.
inline constexpr uint32_t BoneFlagProcedural = 0x4;  // not for parents
inline constexpr uint32_t BoneFlagHitbox = 0x100;
inline constexpr uint32_t BoneFlagAttachment = 0x200;
inline constexpr uint32_t BoneFlagVertexLod0 = 0x400;  // the next bits are the further levels of detail
inline constexpr uint32_t BoneFlagVertexLods = 0x3FC00;
inline constexpr uint32_t BoneFlagMerge = 0x40000;  // may follow the bones of another model
/// How the zero frames of a bone are stored in a block file.
inline constexpr uint32_t BoneFlagZeroFrames = 0xE00000;
static_assert(offsetof(StudioBone, ProceduralType) == 0xA4 && offsetof(StudioBone, Contents) == 0xB4);
/// Decoded rotations of the bone are aligned to `Alignment`.
inline constexpr uint32_t BoneFlagFixedAlignment = 0x100000;
static_assert(offsetof(StudioBone, Rotation) == 0x2C && offsetof(StudioBone, PoseToBone) == 0x60);
static_assert(offsetof(StudioBone, Flags) == 0xA0 && sizeof(StudioBone) == 216);

/// A material that meshes and skins go by the number of.
struct StudioTexture {
  int32_t NameOffset;  // 0x00 material name, without extension
  char Unread04[0x40 - 0x04];
};
static_assert(sizeof(StudioTexture) == 64);

/// A choice among models, one of which is shown; most bodies have one part of one model.
struct StudioBodyPart {
  int32_t NameOffset;   // 0x00
  int32_t ModelCount;   // 0x04
  int32_t Base;         // 0x08 product of the counts of the body parts ahead
  int32_t ModelOffset;  // 0x0C StudioModel
};
static_assert(sizeof(StudioBodyPart) == 16);

/// What a body part can show: meshes, one for each material, and eyes.
struct StudioModel {
  char Name[64];  // 0x00 usually the source file's name, possibly empty
  char Unread40[0x48 - 0x40];
  int32_t MeshCount;          // 0x48
  int32_t MeshOffset;         // 0x4C StudioMesh
  int32_t VertexCount;        // 0x50
  int32_t VertexByteOffset;   // 0x54 of the model's first vertex in the vertex data; a multiple of 48
  int32_t TangentByteOffset;  // 0x58 the same of its tangents; a multiple of 16
  int32_t Unused5C[2];
  int32_t EyeballCount;     // 0x64
  int32_t EyeballOffset;    // 0x68 StudioEyeball
  int32_t VertexDataSlot;   // 0x6C 0 in a file
  int32_t TangentDataSlot;  // 0x70 0 in a file
  char Unread74[0x94 - 0x74];
};
static_assert(offsetof(StudioModel, MeshCount) == 0x48 && offsetof(StudioModel, EyeballCount) == 0x64);
static_assert(sizeof(StudioModel) == 148);

/// All triangles of a model that wear one material. The vertices stand in the .vvd file, the triangles in the .vtx.
struct StudioMesh {
  int32_t Material;     // 0x00 index of a StudioTexture
  int32_t ModelOffset;  // 0x04 back to the owning StudioModel (negative)
  int32_t VertexCount;  // 0x08
  int32_t FirstVertex;  // 0x0C relative to the model's first vertex
  int32_t FlexCount;    // 0x10
  int32_t FlexOffset;   // 0x14 StudioFlex
  int32_t Kind;         // 0x18 MeshKindEyeball for the mesh of an eyeball, else 0
  int32_t Eyeball;      // 0x1C the eyeball of the model, for such a mesh
  int32_t Number;       // 0x20 counted through all models of the file
  Vec3 Unused24;
  int32_t VertexDataSlot;      // 0x30 0 in a file
  int32_t LodVertexCounts[8];  // 0x34 vertices in use at each level of detail
  char Unread54[0x74 - 0x54];
};
inline constexpr int32_t MeshKindEyeball = 1;
static_assert(offsetof(StudioMesh, LodVertexCounts) == 0x34);
static_assert(offsetof(StudioMesh, FlexCount) == 0x10 && sizeof(StudioMesh) == 116);

/// Where a block of animation data lies in the animation block file.
struct StudioAnimBlock {
  int32_t Start;  // 0x00 from the block file's start
  int32_t End;    // 0x04
};
static_assert(sizeof(StudioAnimBlock) == 8);

/// An entry of a table of offsets that count from the header.
struct StudioOffset {
  int32_t Offset;
};
static_assert(sizeof(StudioOffset) == 4);

/// An entry of a table of texture or animation numbers.
struct StudioShort {
  int16_t Value;
};
static_assert(sizeof(StudioShort) == 2);

#pragma pack(pop)

}  // namespace tarnwick::model

#pragma once

#include <cstddef>
#include <cstdint>

#include "model/bone_math_types.h"

namespace tarnwick::model {

// The records of an .mdl file that hold a face: flexes, their controllers and rules, eyes and mouths.
#pragma pack(push, 1)

/// The name of one movement of the face, such as the rise of a lid. Flexes, rules and lids go by its number.
struct StudioFlexDesc {
  int32_t NameOffset;  // 0x00
};
static_assert(sizeof(StudioFlexDesc) == 4);

/// A slider that moves the face, as the game and its tools see it.
struct StudioFlexController {
  int32_t TypeOffset;  // 0x00 string
  int32_t NameOffset;  // 0x04 string
  int32_t Unread08;
  float Minimum;  // 0x0C
  float Maximum;  // 0x10
};
static_assert(sizeof(StudioFlexController) == 20);

/// The formula that gives a flex descriptor its value: a small stack program.
struct StudioFlexRule {
  int32_t FlexDesc;  // 0x00 descriptor that the rule drives
  int32_t OpCount;   // 0x04
  int32_t OpOffset;  // 0x08 StudioFlexOp
};
static_assert(sizeof(StudioFlexRule) == 12);

/// One step of a rule.
struct StudioFlexOp {
  int32_t Op;       // 0x00
  int32_t Operand;  // 0x04 an index, or the bits of a float
};
inline constexpr int32_t FlexOpConstant = 1;
inline constexpr int32_t FlexOpController = 2;
inline constexpr int32_t FlexOpFlexDesc = 3;
inline constexpr int32_t FlexOpAdd = 4;
inline constexpr int32_t FlexOpSubtract = 5;
inline constexpr int32_t FlexOpMultiply = 6;
inline constexpr int32_t FlexOpDivide = 7;
inline constexpr int32_t FlexOpNegate = 8;
inline constexpr int32_t FlexOpLarger = 13;   // of two values
inline constexpr int32_t FlexOpSmaller = 14;  // of two values
static_assert(sizeof(StudioFlexOp) == 8);

/// A slider of the face poser: one controller, or a left and a right one.
struct StudioFlexControl {
  int32_t NameOffset;  // 0x00
  int32_t
      ControllerOffsets[2];  // 0x04 of controller records, from this one: the left, the right; the second 0 for none
  int32_t Unused0C;
  uint8_t Type;      // 0x10
  uint8_t IsStereo;  // 0x11
  uint8_t Unused12[2];
};
static_assert(sizeof(StudioFlexControl) == 20);

/// The vertex animation of one flex on one mesh.
struct StudioFlex {
  int32_t FlexDesc;        // 0x00
  float Targets[4];        // 0x04 weight at which it begins, is whole, begins to end, has ended; 0 1 10 11 by default
  int32_t VertAnimCount;   // 0x14
  int32_t VertAnimOffset;  // 0x18 StudioVertAnim
  int32_t Partner;         // 0x1C descriptor of the other side's flex, 0 for none
  uint8_t VertAnimKind;    // 0x20 VertAnimKind
  char Unused21[0x3C - 0x21];
};
/// A flex whose vertex animations are StudioVertAnim, or StudioWrinkleVertAnim.
inline constexpr uint8_t VertAnimOrdinary = 0;
inline constexpr uint8_t VertAnimWrinkle = 1;
static_assert(offsetof(StudioFlex, VertAnimKind) == 0x20);
static_assert(offsetof(StudioFlex, VertAnimCount) == 0x14 && sizeof(StudioFlex) == 60);

/// Where one vertex moves under a flex that is fully on.
struct StudioVertAnim {
  int16_t Vertex;             // 0x00 within the mesh
  uint8_t Speed;              // 0x02
  uint8_t Side;               // 0x03
  PackedVec48 PositionDelta;  // 0x04
  PackedVec48 NormalDelta;    // 0x0A
};
static_assert(sizeof(StudioVertAnim) == 16);

/// A vertex animation that drives a wrinkle map too.
struct StudioWrinkleVertAnim {
  StudioVertAnim Anim;   // 0x00
  int16_t WrinkleDelta;  // 0x10
};
static_assert(sizeof(StudioWrinkleVertAnim) == 18);

/// An eye: where it sits, the material that is drawn on it, and the lids that follow it.
struct StudioEyeball {
  int32_t NameOffset;   // 0x00
  int32_t Bone;         // 0x04
  Vec3 Origin;          // 0x08 in the bone's space; the script wants it in the model's
  float ForwardOffset;  // 0x14 its arctangent is the eye's angle
  float Radius;         // 0x18
  Vec3 Up;              // 0x1C in the bone's space
  Vec3 Forward;         // 0x28
  int32_t Unused34;
  int32_t Texture;  // 0x38 0 in files seen: the eye's mesh has the texture
  float IrisScale;  // 0x3C
  int32_t Unused40;
  int32_t UpperFlexDescs[3];  // 0x44 descriptors of the upper lid: lowered, neutral, raised
  int32_t LowerFlexDescs[3];  // 0x50
  float UpperTarget[3];       // 0x5C upper lid lowered, neutral, raised
  float LowerTarget[3];       // 0x68 lower lid lowered, neutral, raised
  int32_t UpperLidFlexDesc;   // 0x74
  int32_t LowerLidFlexDesc;   // 0x78
  char Unread7C[0xAC - 0x7C];
};
static_assert(offsetof(StudioEyeball, Texture) == 0x38 && offsetof(StudioEyeball, UpperTarget) == 0x5C);
static_assert(offsetof(StudioEyeball, UpperLidFlexDesc) == 0x74 && sizeof(StudioEyeball) == 172);

/// A mouth that opens by the sound of speech.
struct StudioMouth {
  int32_t Bone;      // 0x00
  Vec3 Forward;      // 0x04
  int32_t FlexDesc;  // 0x10
};
static_assert(sizeof(StudioMouth) == 20);

#pragma pack(pop)

}  // namespace tarnwick::model

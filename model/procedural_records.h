#pragma once

#include <cstddef>
#include <cstdint>

#include "model/bone_math_types.h"

namespace tarnwick::model {

// The records of bones that something else than an animation moves. An `Offset` counts from the record's own start.
#pragma pack(push, 1)

/// A bone that follows the rotation of another one.
struct StudioDrivenBone {
  int32_t Driver;         // 0x00 the driving bone
  int32_t TriggerCount;   // 0x04
  int32_t TriggerOffset;  // 0x08 StudioTrigger
};
static_assert(sizeof(StudioDrivenBone) == 12);

/// A pose of the driver, and the pose that the driven bone has then.
struct StudioTrigger {
  float InverseTolerance;  // 0x00 1 / the angle in radians at which the trigger's weight ends
  Quat DriverRotation;     // 0x04
  Vec3 Position;           // 0x14 of the driven bone
  Quat Rotation;           // 0x20 of the driven bone
};
static_assert(offsetof(StudioTrigger, Position) == 0x14 && sizeof(StudioTrigger) == 48);

/// A least and a largest value, and what happens on the way.
struct JiggleLimit {
  float Minimum, Maximum, Friction, Bounce;
};
/// The same without a bounce, for the base of the spring.
struct JiggleBaseLimit {
  float Minimum, Maximum, Friction;
};

/// A bone that swings by itself. Angles are radians. Some files hold 120 bytes only; nothing behind 0x78 is used.
struct StudioJiggleBone {
  uint32_t Flags;                              // 0x00 JiggleFlag bits
  float Length;                                // 0x04
  float TipMass;                               // 0x08
  float YawStiffness, YawDamping;              // 0x0C
  float PitchStiffness, PitchDamping;          // 0x14
  float AlongStiffness, AlongDamping;          // 0x1C
  float AngleLimit;                            // 0x24
  JiggleLimit Yaw;                             // 0x28
  JiggleLimit Pitch;                           // 0x38
  float BaseMass, BaseStiffness, BaseDamping;  // 0x48
  JiggleBaseLimit Left, Up, Forward;           // 0x54
};
inline constexpr uint32_t JiggleFlagFlexible = 0x1;
inline constexpr uint32_t JiggleFlagRigid = 0x2;
inline constexpr uint32_t JiggleFlagYawLimit = 0x4;
inline constexpr uint32_t JiggleFlagPitchLimit = 0x8;
inline constexpr uint32_t JiggleFlagAngleLimit = 0x10;
inline constexpr uint32_t JiggleFlagKeepLength = 0x20;
inline constexpr uint32_t JiggleFlagBaseSpring = 0x40;
static_assert(offsetof(StudioJiggleBone, AngleLimit) == 0x24 && offsetof(StudioJiggleBone, BaseMass) == 0x48);
static_assert(offsetof(StudioJiggleBone, Left) == 0x54 && sizeof(StudioJiggleBone) == 0x78);

#pragma pack(pop)

}  // namespace tarnwick::model

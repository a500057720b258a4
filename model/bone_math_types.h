#pragma once

#include <cstdint>

namespace tarnwick::model {

// The value types of bone mathematics, laid out as compiled models hold them; packed, since a model may hold them at
// any byte.
#pragma pack(push, 1)

/// Three floats: a point, a direction, or a scale for each axis.
struct Vec3 {
  float x, y, z;
};

/// A rotation as a quaternion in the order x, y, z, w. The identity is (0, 0, 0, 1).
struct Quat {
  float x, y, z, w;
};

/// A rotation in radians: x about the X axis (roll), y about Y (pitch), z about Z (yaw). The form of SMD files.
struct EulerAngles {
  float x, y, z;
};

/// A rotation in degrees, in the order of a QC script's "rotate" clause.
struct PitchYawRoll {
  float Pitch, Yaw, Roll;
};

/// A rotation (columns 0 to 2) and a translation (column 3): three rows of four, element (row, column) at
/// 4 * row + column. A point p goes to M * (p, 1).
struct Matrix3x4 {
  float m[12];

  float operator()(int row, int column) const { return m[4 * row + column]; }
  /// A record may lie at any byte, so no reference to an element is given out.
  void Set(int row, int column, float value) { m[4 * row + column] = value; }
};

/// A rotation in 48 bits: x and y in 16 bits each, z in 15, the sign of w in the top bit of the last word.
struct PackedQuat48 {
  uint16_t Words[3];
};

/// A rotation in 64 bits: x, y and z in 21 bits each from the lowest bit on, the sign of w in the top bit.
struct PackedQuat64 {
  uint64_t Bits;
};

/// Three half-floats.
struct PackedVec48 {
  uint16_t Words[3];
};

#pragma pack(pop)

static_assert(sizeof(PackedQuat48) == 6 && sizeof(PackedQuat64) == 8 && sizeof(PackedVec48) == 6);
static_assert(sizeof(Vec3) == 12 && sizeof(Quat) == 16 && sizeof(EulerAngles) == 12 && sizeof(Matrix3x4) == 48);

}  // namespace tarnwick::model

#pragma once

#include <cstdint>

#include "model/bone_math_types.h"

namespace tarnwick::model {

// Rotations and bone transforms. Values are stored as floats; a sum of products is formed in double precision and
// rounded once, when its element is stored. The last argument of each function is its result. Sines, cosines, roots
// and arctangents are those of the standard library on doubles, so the last digits follow it.

/// The factors between degrees and radians. The first is not 180/pi rounded: it differs in the seventh digit, and the
/// models' own tools turn with it.
inline constexpr double RadiansToDegrees = 57.2957763671875;
inline constexpr double DegreesToRadians = 0.01745329238474369;

/// The rotation with `a`; no translation.
void AnglesToMatrix(const PitchYawRoll& a, Matrix3x4& result);
/// The rotation with `a` and the translation `p`.
void AnglesPosToMatrix(const PitchYawRoll& a, const Vec3& p, Matrix3x4& result);

/// The rotation with `q`, which is not normalised first; no translation.
void QuatToMatrix(const Quat& q, Matrix3x4& result);
/// The rotation with `q` and the translation `p`.
void QuatPosToMatrix(const Quat& q, const Vec3& p, Matrix3x4& result);

/// The rotation of `m` as a quaternion of unit length, and its translation.
void MatrixToQuatPos(const Matrix3x4& m, Quat& q, Vec3& p);

/// The rotation of `m` in degrees. Where its X axis points along Z, roll is 0 and the turn about Z is yaw.
void MatrixToAngles(const Matrix3x4& m, PitchYawRoll& result);
/// The same in radians, converted from the degrees.
void MatrixToEuler(const Matrix3x4& m, EulerAngles& result);

/// QuatToMatrix, then MatrixToEuler.
void QuatToEuler(const Quat& q, EulerAngles& result);
void EulerToQuat(const EulerAngles& e, Quat& result);
/// Of all angles that give the rotation `q` those nearest `near`, each in any turn. Where the X axis points along Z,
/// what X and Z share alike is as in `near`. Exact to the float there too, where QuatToEuler loses a thousandth of a
/// radian.
void QuatToEulerNear(const Quat& q, const EulerAngles& near, EulerAngles& result);

/// Scales `q` to unit length; the zero quaternion stays.
void NormalizeQuat(Quat& q);

/// `q` or its negation, whichever lies nearer `p`; `q` where both are as near. `result` may be `q`.
void AlignQuat(const Quat& p, const Quat& q, Quat& result);

/// `a` times `b`: first `b`, then `a`. `result` may be `a` or `b`.
void ConcatMatrix(const Matrix3x4& a, const Matrix3x4& b, Matrix3x4& result);

/// `v` less the translation of `m`, turned by the transpose of its rotation: the inverse for a pure rotation.
void InverseTransformPoint(const Vec3& v, const Matrix3x4& m, Vec3& result);

/// Copies column 0 to 3 of `m` out.
void GetMatrixColumn(const Matrix3x4& m, int column, Vec3& result);
/// Copies `value` into column 0 to 3 of `m`.
void SetMatrixColumn(Matrix3x4& m, int column, const Vec3& value);

/// The rotation that `packed` holds. Components whose squares add up to more than 1 give a not-a-number as w.
void DecodeQuat48(const PackedQuat48& packed, Quat& result);
void DecodeQuat64(const PackedQuat64& packed, Quat& result);

/// A half-float: 1 sign bit, 5 bits of exponent, 10 of mantissa. The infinities are +-65504, a not-a-number is 0.
float DecodeHalfFloat(uint16_t bits);
void DecodeVec48(const PackedVec48& packed, Vec3& result);

}  // namespace tarnwick::model

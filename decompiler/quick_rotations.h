#pragma once

#include "decompiler/bone_math_types.h"

namespace tarnwick::decompiler {

// QuatToEuler and EulerToQuat of bone_math.h, the same to the last bit, several times as fast. Sines, cosines and
// arctangents come from short series around points of a table, in double precision. What is stored is a float: it can
// only differ from the one that the standard library's function leads to if the value lies within the series' error of
// the middle between two floats. That is seen, happens about once in a million values, and such a value is computed the
// plain way.

void QuickQuatToEuler(const Quat& q, EulerAngles& result);
void QuickEulerToQuat(const EulerAngles& e, Quat& result);

}  // namespace tarnwick::decompiler

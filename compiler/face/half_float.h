#pragma once

#include <cstdint>

#include "model/bone_math_types.h"

namespace tarnwick::compiler {

/// The half-float nearest to `value`, of two as near the even one: 1 sign bit, 5 bits of exponent, 10 of mantissa. What
/// is beyond the largest becomes the largest, 65504; a not-a-number is 0.
uint16_t EncodeHalfFloat(double value);

model::PackedVec48 EncodeVec48(double x, double y, double z);

}  // namespace tarnwick::compiler

#pragma once

#include <span>

#include "core/vector_code.h"
#include "model/bone_math_types.h"

namespace tarnwick::model {

/// EulerToQuat and QuatToEuler for many rotations at a time, to the last bit and several times as fast. Results are
/// formed side by side with short series; where their error could reach the stored float, and for angles and
/// quaternions out of the ordinary, the plain functions decide. `result` is as long as the input and does not overlap
/// it. Each level of vector code gives the same; `level` is at most that of the processor.
void QuickEulerToQuat(std::span<const EulerAngles> angles, std::span<Quat> result,
                      core::VectorLevel level = core::HighestVectorLevel());
void QuickQuatToEuler(std::span<const Quat> rotations, std::span<EulerAngles> result,
                      core::VectorLevel level = core::HighestVectorLevel());

}  // namespace tarnwick::model

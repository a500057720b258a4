#pragma once

#include <cstdint>

#include "model/animation_data.h"
#include "model/bone_math_types.h"
#include "model/studio_records.h"

namespace tarnwick::model {

// One bone at one frame: each run stream is sought from its start. PosePlayer goes through many frames much faster.

/// The rotation of `bone` at `frame` of the data that `anim` belongs to. Data outside the image leave the default.
[[nodiscard]] Quat DecodeBoneRotation(int32_t frame, const StudioBone& bone, const AnimRecord& anim);

/// The position of `bone` at `frame`; as DecodeBoneRotation.
[[nodiscard]] Vec3 DecodeBonePosition(int32_t frame, const StudioBone& bone, const AnimRecord& anim);

/// What a bone without data has: for a delta animation nothing (identity and zero), else its own default.
[[nodiscard]] Quat DefaultRotation(const StudioBone& bone, bool delta);
[[nodiscard]] Vec3 DefaultPosition(const StudioBone& bone, bool delta);

}  // namespace tarnwick::model

#pragma once

#include <cstdint>
#include <span>

#include "model/animation_data.h"
#include "model/bone_math_types.h"
#include "model/studio_records.h"

namespace tarnwick::model {

// The plain way from an animation's data to a pose: each frame on its own, each run stream from its start. PosePlayer
// gives the same values much faster; this is what it is measured against.

/// The rotation of `bone` at `frame` of the data that `anim` belongs to. Data outside the image leave the default.
Quat DecodeBoneRotation(int32_t frame, const StudioBone& bone, const AnimRecord& anim);

/// The position of `bone` at `frame`; as DecodeBoneRotation.
Vec3 DecodeBonePosition(int32_t frame, const StudioBone& bone, const AnimRecord& anim);

/// The local position and rotation of every bone at `frame` of `animation`. The two arrays have as many elements as
/// `bones`.
void DecodePoseAtFrame(ModelReader& reader, const core::RecordArray<StudioBone>& bones,
                       const core::Record<StudioAnimDesc>& animation, int32_t frame, std::span<Vec3> positions,
                       std::span<Quat> rotations);

/// What a bone without data has: for a delta animation nothing (identity and zero), else its own default.
Quat DefaultRotation(const StudioBone& bone, bool delta);
Vec3 DefaultPosition(const StudioBone& bone, bool delta);

}  // namespace tarnwick::model

#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "model/animation_data.h"

namespace tarnwick::tests {

// The plain way from an animation's data to a pose: each frame on its own, each run stream from its start. What
// model::PosePlayer is compared with, in tests by values and in benchmarks by speed.

/// Where the data of `frame` begin: the first StudioAnim. `frame` becomes the frame within that data. Nothing if the
/// animation says that it has none, or if they lie in a block file that is not there. On the reader's own thread.
[[nodiscard]] std::optional<model::AnimData> FindAnimData(model::ModelReader& reader,
                                                          const core::Record<model::StudioAnimDesc>& animation,
                                                          int32_t& frame);

/// The local position and rotation of every bone at `frame` of `animation`. The two arrays have as many elements as
/// `bones`.
void DecodePoseAtFrame(model::ModelReader& reader, const core::RecordArray<model::StudioBone>& bones,
                       const core::Record<model::StudioAnimDesc>& animation, int32_t frame,
                       std::span<model::Vec3> positions, std::span<model::Quat> rotations);

}  // namespace tarnwick::tests

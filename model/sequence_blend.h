#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "core/image_view.h"
#include "model/animation_records.h"
#include "model/loaded_model.h"

namespace tarnwick::model {

/// The values that the pose parameters have while a sequence is judged.
using PoseValues = std::array<float, 10>;

/// The animation at blend position (`x`, `y`) of `sequence`, clamped to the columns and rows: an index into the
/// animation table, 0 for a number that the table does not hold. Nothing if the blend table does not hold the entry.
[[nodiscard]] std::optional<int64_t> BlendAnimation(const LoadedModel& model,
                                                    const core::Record<StudioSeqDesc>& sequence, int64_t x, int64_t y);

/// Frames per second of `sequence` at these pose values: the rates of the four animations round the blend position,
/// each by its weight.
float SequenceFps(const LoadedModel& model, const core::Record<StudioSeqDesc>& sequence, const PoseValues& poses);

/// Number of the last frame of `sequence` at these pose values, weighed the same way.
int32_t SequenceLastFrame(const LoadedModel& model, const core::Record<StudioSeqDesc>& sequence,
                          const PoseValues& poses);

}  // namespace tarnwick::model

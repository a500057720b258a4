#pragma once

#include "decompiler/job/job_context.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler::sources {

/// Writes how the model's animations are stored: $animblocksize where it has a block file, with the size that makes a
/// compile fill the blocks as they are filled, and $sectionframes where animations are not cut as usual.
void WriteStorageStatements(JobContext& job);

/// Whether the model has a block file.
[[nodiscard]] bool HasAnimationBlocks(const JobContext& job);

/// Whether all data of an animation stand in the model file although the model has a block file.
[[nodiscard]] bool IsKeptOutOfBlocks(JobContext& job, const core::Record<StudioAnimDesc>& animation);

}  // namespace tarnwick::decompiler::sources

#pragma once

#include "decompiler/job_context.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler {

/// Writes one sequence: the `$animation` lines and files of its animations, then its `$sequence` statement with events
/// and blends. False, told, if the model's tables are damaged such that the stage is to end.
bool WriteSequence(JobContext& job, const core::Record<StudioSeqDesc>& sequence);

}  // namespace tarnwick::decompiler

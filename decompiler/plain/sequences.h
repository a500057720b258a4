#pragma once

#include <string>

#include "decompiler/job/job_context.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler::plain {

/// Exports the animations that `sequence` blends, column by column: their SMD files, their `$animation` lines in the
/// script, and before the first delta animation of the job the delta reference file with its line. Returns the name of
/// the delta reference, empty if the job has none so far.
///
/// Every animation is formatted once a job; one that is reached again has its log line and its `$animation` line again,
/// and is written again where another of the same name has taken its place. A file that cannot be opened and an
/// animation whose data are damaged cost that one file, and are told; the script names it all the same.
std::string ExportSequenceAnimations(JobContext& job, const core::Record<StudioSeqDesc>& sequence);

/// Writes all sequences, each with the files of its animations.
void WriteSequences(JobContext& job);

}  // namespace tarnwick::decompiler::plain

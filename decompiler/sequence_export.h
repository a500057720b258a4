#pragma once

#include <cstdint>
#include <string>

#include "decompiler/job_context.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler {

/// Exports the animations that `sequence` blends, column by column: their SMD files, their `$animation` lines in the
/// script, and before the first delta animation of the job the delta reference file with its line. Returns the name of
/// the delta reference, empty if the job has none so far.
///
/// Every animation is formatted once a job. In the plain form one that is reached again has its log line and its
/// `$animation` line again; in sources that are ready to compile it has one line. A file that cannot be opened and
/// an animation whose data are damaged cost that one file, and are told; the script names it all the same.
std::string ExportSequenceAnimations(JobContext& job, const core::Record<StudioSeqDesc>& sequence);

/// What the statements of a sequence call animation number `animation`: its own name, and for one whose name begins
/// with "@" the name less that character, or the stem of its file in sources that are ready to compile. Not in quotes.
/// Empty for an animation that has no name inside the file.
std::string AnimationScriptName(const JobContext& job, int64_t animation);

}  // namespace tarnwick::decompiler

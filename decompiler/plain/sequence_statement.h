#pragma once

#include <string>

#include "decompiler/job/job_context.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler::plain {

/// Exports the animations of a sequence, and returns the name of the job's delta reference, empty if there is none.
using ExportAnimations = std::string(JobContext& job, const core::Record<StudioSeqDesc>& sequence);

/// Writes one sequence: the `$animation` lines and files of its animations, then its `$sequence` statement with events
/// and blends. False, told, if the sequence's tables are damaged: then its statement is left out.
[[nodiscard]] bool WriteSequenceStatement(JobContext& job, const core::Record<StudioSeqDesc>& sequence,
                                          ExportAnimations& exportAnimations);

/// Writes all sequences of the model, and waits for their files.
void WriteSequenceStatements(JobContext& job, ExportAnimations& exportAnimations);

}  // namespace tarnwick::decompiler::plain

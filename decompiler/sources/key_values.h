#pragma once

#include <string>

#include "decompiler/job/job_context.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler::sources {

/// $keyvalues, a block for each that the model holds. Braces are balanced.
void WriteModelKeyValues(JobContext& job);

/// The `keyvalues` block of a sequence, lines of the sequence's own block; empty for one that has none.
[[nodiscard]] std::string SequenceKeyValues(JobContext& job, const core::Record<StudioSeqDesc>& sequence);

}  // namespace tarnwick::decompiler::sources

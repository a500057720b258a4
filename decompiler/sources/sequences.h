#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::sources {

/// Writes the weight lists, the declared sequences, and all animations and sequences with their files.
void WriteSequences(JobContext& job);

}  // namespace tarnwick::decompiler::sources

#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::plain {

/// Writes the script from the pose parameters on: everything that is no mesh. Sequences bring their animation files
/// with them. Each kind of statement is a stage of its own: a damaged table costs the statements made from it.
void WriteQcStatements(JobContext& job);

}  // namespace tarnwick::decompiler::plain

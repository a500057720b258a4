#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::sources {

/// $texturegroup: a row a skin family, with the columns in which some family differs from the first.
void WriteSkinStatements(JobContext& job);

}  // namespace tarnwick::decompiler::sources

#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::sources {

/// $texturegroup: a row a skin family, with the columns in which some family differs from the first and those of
/// textures that nothing else brings into the model, so ordered that a compile numbers all textures as they are.
void WriteSkinStatements(JobContext& job);

}  // namespace tarnwick::decompiler::sources

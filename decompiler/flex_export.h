#pragma once

#include "decompiler/job_context.h"

namespace tarnwick::decompiler {

/// Writes the commands of a model's face into its open `$model` block, and its VTA file.
void WriteFace(JobContext& job, const core::Record<StudioModel>& model);

}  // namespace tarnwick::decompiler

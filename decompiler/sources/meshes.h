#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::sources {

/// Writes an SMD file for each model of each body part and each of its LODs, and the script's `$model`, `$bodygroup`,
/// `$lod` and `$shadowlod` commands, with the face commands inside a `$model` block. Needs the job's .mdl and .vtx
/// images. What goes wrong is told and ends this stage only.
void WriteModelMeshes(JobContext& job);

}  // namespace tarnwick::decompiler::sources

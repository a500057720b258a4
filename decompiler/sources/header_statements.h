#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::sources {

/// $modelname, and what the header says of the whole model: $staticprop, $surfaceprop, $contents, positions, eyes.
void WriteHeaderStatements(JobContext& job);
/// $cdmaterials, a line a folder.
void WriteMaterialFolders(JobContext& job);
/// $bbox and $cbox, where a compile would not compute them. `hasCollision`: the script has a collision model, which
/// widens the box. Called behind the animations.
void WriteBoxes(JobContext& job, bool hasCollision);
/// $includemodel.
void WriteIncludedModels(JobContext& job);

}  // namespace tarnwick::decompiler::sources

#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::sources {

/// $jigglebone for every bone that swings, and $proceduralbones with its .vrd file for those that follow another bone.
void WriteProceduralBones(JobContext& job);

}  // namespace tarnwick::decompiler::sources

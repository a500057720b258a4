#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::sources {

/// Writes the whole script of sources that are ready to compile, and with it every file that it names: header, folders,
/// bones, meshes, skins, boxes, chains, bones that move by themselves, animations and sequences, key values, in an
/// order in which each name is known before it is used. Each kind of statement is a stage of its own: a damaged table
/// costs the statements made from it. What the model holds and no statement says is counted as lost.
void WriteScript(JobContext& job);

}  // namespace tarnwick::decompiler::sources

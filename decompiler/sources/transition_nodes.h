#pragma once

#include <string>

#include "decompiler/job/job_context.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler::sources {

/// `node`, `transition` or `rtransition` of a sequence, a line; empty for one that stands in no node.
[[nodiscard]] std::string NodeWords(JobContext& job, const core::Record<StudioSeqDesc>& sequence);

/// Writes $calctransitions where the model's ways between nodes are those that it asks for. Counts the nodes that no
/// sequence names, and the steps between nodes that neither it nor a sequence makes.
void WriteTransitions(JobContext& job, const core::RecordArray<StudioSeqDesc>& sequences);

}  // namespace tarnwick::decompiler::sources

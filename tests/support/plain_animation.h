#pragma once

#include <cstdio>
#include <string>

#include "decompiler/job/job_context.h"
#include "model/animation_records.h"

namespace tarnwick::tests {

/// The content of an animation's file made the plain way: every frame decoded from the start of its data, every number
/// printed by fprintf. For comparison with WriteAnimationSmd, in tests by content and in benchmarks by speed.
void PlainAnimationSmd(std::FILE* file, decompiler::JobContext& job,
                       const core::Record<model::StudioAnimDesc>& animation);

/// The same as text.
std::string PlainAnimationText(decompiler::JobContext& job, const core::Record<model::StudioAnimDesc>& animation);

}  // namespace tarnwick::tests

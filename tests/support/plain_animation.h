#pragma once

#include <cstdio>
#include <string>

#include "decompiler/animation_records.h"
#include "decompiler/job_context.h"

namespace tarnwick::tests {

/// The content of an animation's file made the plain way: every frame decoded from the start of its data, every number
/// printed by fprintf. For comparison with WriteAnimationSmd, in tests by content and in benchmarks by speed.
void PlainAnimationSmd(std::FILE* file, decompiler::JobContext& job,
                       const core::Record<decompiler::StudioAnimDesc>& animation);

/// The same as text.
std::string PlainAnimationText(decompiler::JobContext& job, const core::Record<decompiler::StudioAnimDesc>& animation);

}  // namespace tarnwick::tests

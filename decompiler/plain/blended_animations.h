#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "decompiler/job/job_context.h"
#include "decompiler/stages/animation_file.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler::plain {

/// Writes the animation's `$animation` line, whose source is `source`; an animation whose name begins with "@" has
/// none.
void WriteAnimationStatement(JobContext& job, const NamedAnimation& animation, std::string_view source);

/// Calls `use` for each animation that `sequence` blends, column by column, until it gives false. A number that is none
/// means the first animation. Damaged tables are told.
void ForEachBlended(JobContext& job, const core::Record<StudioSeqDesc>& sequence,
                    const std::function<bool(const core::Record<StudioAnimDesc>&, int64_t number)>& use);

/// What the statements of a sequence call animation number `animation`: its own name, less an "@" at its start. Not in
/// quotes. Empty for an animation that has no name inside the file.
[[nodiscard]] std::string AnimationScriptName(const JobContext& job, int64_t animation);

}  // namespace tarnwick::decompiler::plain

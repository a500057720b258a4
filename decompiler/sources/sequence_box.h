#pragma once

#include <optional>

#include "decompiler/job/job_context.h"
#include "decompiler/sources/posed_vertices.h"

namespace tarnwick::decompiler::sources {

/// The box that a compile makes of the first sequence, without a collision model: all vertices, bones and hit boxes in
/// all frames of its animations. Nothing if one of these was not written, is a difference to another, or holds more
/// work than a box is worth.
[[nodiscard]] std::optional<BoxOfPoints> BoxOfFirstSequence(JobContext& job);

}  // namespace tarnwick::decompiler::sources

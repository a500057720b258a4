#pragma once

#include <memory>

#include "decompiler/job/job_context.h"
#include "smd/skeleton_text.h"

namespace tarnwick::decompiler {

/// The bones of the job's model as its reference, LOD and VTA files hold them. Nothing, told, if the model's bones are
/// damaged or their names too much.
[[nodiscard]] std::shared_ptr<const smd::SkeletonText> FormatReferenceSkeleton(JobContext& job);

}  // namespace tarnwick::decompiler

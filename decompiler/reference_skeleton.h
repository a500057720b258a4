#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "decompiler/job_context.h"

namespace tarnwick::decompiler {

/// A model's bones as reference, LOD and VTA files hold them, formatted once, with the platform's line ends.
struct ReferenceSkeleton {
  std::string NodeLines;       // index, name, parent
  std::string BoneLines;       // index, default position and angles: one frame
  uint64_t BoneNonFinite = 0;  // infinities and not-a-numbers in BoneLines
};

/// Formats the bones of the job's model. Nothing, told, if the model's bones are damaged or their names too much.
std::shared_ptr<const ReferenceSkeleton> FormatReferenceSkeleton(JobContext& job);

}  // namespace tarnwick::decompiler

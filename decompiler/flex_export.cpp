#include "decompiler/flex_export.h"

namespace tarnwick::decompiler {

void WriteFace(JobContext& job, const core::Record<StudioModel>& model) {
  (void)job;
  (void)model;
}

}  // namespace tarnwick::decompiler

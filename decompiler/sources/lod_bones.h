#pragma once

#include <cstdint>
#include <map>

#include "decompiler/job/job_context.h"
#include "model/vtx_records.h"

namespace tarnwick::decompiler::sources {

/// The bones of `model` whose weights level of detail `number` gives to another bone, and that other one. The bones'
/// flags tell which ones the level does not use; its vertices, beside those of the reference at the same places, tell
/// where their weights went.
[[nodiscard]] std::map<int32_t, int32_t> FindReplacedBones(JobContext& job, const core::Record<StudioModel>& model,
                                                           const core::Record<VtxModelLod>& reference,
                                                           const core::Record<VtxModelLod>& lod, int number);

}  // namespace tarnwick::decompiler::sources

#pragma once

#include <memory>
#include <string>

#include "decompiler/job/job_context.h"
#include "model/vtx_records.h"
#include "smd/skeleton_text.h"

namespace tarnwick::decompiler {

/// Makes the job's .vtx image ready to be walked. False, told, if its version or its header cannot be read.
[[nodiscard]] bool PrepareVtx(JobContext& job);

/// The LODs of model number `model` of body part number `part`. Nothing, told, if the .vtx file does not hold them.
[[nodiscard]] std::optional<core::RecordArray<VtxModelLod>> LodsOf(JobContext& job, int64_t part, int64_t model);

/// A model with eyeballs, or with a mesh that has flexes.
[[nodiscard]] bool HasFace(const JobContext& job, const core::Record<StudioModel>& model);

/// Whether any mesh of the LOD has a strip group. Meshes that cannot be read count as having one: writing the file then
/// tells what is wrong.
[[nodiscard]] bool HasStripGroups(const JobContext& job, const core::Record<StudioModel>& model,
                                  const core::Record<VtxModelLod>& lod);

/// Writes one LOD of `model` to the SMD file `name`. False, told, if it could not be had whole. The plain form then
/// keeps what could be; a source that a compiler is to take is whole or not there.
[[nodiscard]] bool WriteMeshFile(JobContext& job, const std::shared_ptr<const smd::SkeletonText>& skeleton,
                                 const std::string& name, const core::Record<StudioModel>& model,
                                 const core::Record<VtxModelLod>& lod);

}  // namespace tarnwick::decompiler

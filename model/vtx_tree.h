#pragma once

#include <optional>

#include "core/image_view.h"
#include "model/vtx_records.h"

namespace tarnwick::model {

// Steps down the tree of a .vtx file. The numbers come from the .mdl file and from the header's LOD count; the tree's
// own counts are not read. Each gives nothing if the record does not lie inside the file.

[[nodiscard]] inline std::optional<core::Record<VtxModel>> VtxModelAt(const core::ImageView& vtx, int64_t bodyPart,
                                                                      int64_t model) {
  const auto header = vtx.At<VtxHeader>(0);
  if (!header) return std::nullopt;
  const auto part =
      vtx.At<VtxBodyPart>(header->Offset() + (*header)->BodyPartOffset + bodyPart * int64_t{sizeof(VtxBodyPart)});
  if (!part) return std::nullopt;
  return vtx.At<VtxModel>(part->Offset() + (*part)->ModelOffset + model * int64_t{sizeof(VtxModel)});
}

[[nodiscard]] inline std::optional<core::Record<VtxModelLod>> VtxLodAt(const core::ImageView& vtx,
                                                                       const core::Record<VtxModel>& model,
                                                                       int64_t lod) {
  return vtx.At<VtxModelLod>(model.Offset() + model->LodOffset + lod * int64_t{sizeof(VtxModelLod)});
}

[[nodiscard]] inline std::optional<core::Record<VtxMesh>> VtxMeshAt(const core::ImageView& vtx,
                                                                    const core::Record<VtxModelLod>& lod,
                                                                    int64_t mesh) {
  return vtx.At<VtxMesh>(lod.Offset() + lod->MeshOffset + mesh * int64_t{sizeof(VtxMesh)});
}

}  // namespace tarnwick::model

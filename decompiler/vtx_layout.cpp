#include "decompiler/vtx_layout.h"

#include <string>

#include "decompiler/job_context.h"
#include "decompiler/vtx_tree.h"

namespace tarnwick::decompiler {

namespace {

/// Layouts that files were found to have.
constexpr VtxLayout KnownLayouts[] = {{25, 27}, {33, 35}, {25, 35}};

/// Whether the strips of each group of `mesh` follow one another and together hold the group's indices.
bool MeshFits(JobContext& job, const core::ImageView& vtx, const VtxLayout& layout, const core::Record<VtxMesh>& mesh) {
  for (int64_t g = 0; g < mesh->StripGroupCount; ++g) {
    const auto group = StripGroupAt(vtx, layout, mesh, g);
    if (!group || !job.Spend(RecordCost)) return false;
    int64_t indices = 0;
    for (int64_t s = 0; s < (*group)->StripCount; ++s) {
      const auto strip = StripAt(vtx, layout, *group, s);
      if (!strip || (*strip)->FirstIndex != indices || (*strip)->IndexCount < 0 || !job.Spend(RecordCost)) return false;
      indices += (*strip)->IndexCount;
    }
    if (indices != (*group)->IndexCount) return false;
  }
  return true;
}

bool FileFits(JobContext& job, const VtxLayout& layout) {
  const core::ImageView vtx = job.Model.Vtx->View();
  const core::ImageView mdl = job.Model.View();
  const auto header = job.Model.Header();
  const auto vtxHeader = vtx.At<VtxHeader>(0);
  const auto parts = mdl.Array<StudioBodyPart>(header->BodyPartOffset, header->BodyPartCount);
  if (!vtxHeader || !parts) return false;
  for (int64_t b = 0; b < parts->Count(); ++b) {
    const auto part = (*parts)[b];
    const auto models = mdl.Array<StudioModel>(part.Offset() + part->ModelOffset, part->ModelCount);
    if (!models) return false;
    for (int64_t m = 0; m < models->Count(); ++m) {
      const auto vtxModel = VtxModelAt(vtx, b, m);
      if (!vtxModel || !job.Spend(RecordCost)) return false;
      for (int64_t l = 0; l < (*vtxHeader)->LodCount; ++l) {
        const auto lod = VtxLodAt(vtx, *vtxModel, l);
        if (!lod || !job.Spend(RecordCost)) return false;
        for (int64_t i = 0; i < (*models)[m]->MeshCount; ++i) {
          const auto mesh = VtxMeshAt(vtx, *lod, i);
          if (!mesh || !job.Spend(RecordCost) || !MeshFits(job, vtx, layout, *mesh)) return false;
        }
      }
    }
  }
  return true;
}

}  // namespace

VtxLayout LayoutOfVersion(int32_t version) {
  return version == 49 ? VtxLayout{33, 27} : VtxLayout{25, 27};
}

VtxLayout FindVtxLayout(JobContext& job) {
  const VtxLayout expected = LayoutOfVersion(job.Model.Header()->Version);
  if (FileFits(job, expected)) return expected;
  for (const VtxLayout& layout : KnownLayouts) {
    if (layout == expected || !FileFits(job, layout)) continue;
    job.Log("Reading " + job.Model.Vtx->Path() + " with strip groups of " + std::to_string(layout.StripGroupSize) +
            " and strips of " + std::to_string(layout.StripSize) + " bytes\r\n");
    return layout;
  }
  return expected;
}

std::optional<core::Record<VtxStripGroup>> StripGroupAt(const core::ImageView& vtx, const VtxLayout& layout,
                                                        const core::Record<VtxMesh>& mesh, int64_t index) {
  return vtx.At<VtxStripGroup>(mesh.Offset() + mesh->StripGroupOffset + index * layout.StripGroupSize);
}

std::optional<core::Record<VtxStrip>> StripAt(const core::ImageView& vtx, const VtxLayout& layout,
                                              const core::Record<VtxStripGroup>& group, int64_t index) {
  return vtx.At<VtxStrip>(group.Offset() + group->StripOffset + index * layout.StripSize);
}

}  // namespace tarnwick::decompiler

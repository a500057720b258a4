#include "model/vtx_layout.h"

#include <string>

#include "model/model_reader.h"
#include "model/vtx_tree.h"

namespace tarnwick::model {

namespace {

/// Layouts that files were found to have.
constexpr VtxLayout KnownLayouts[] = {{25, 27}, {33, 35}, {25, 35}};

/// Whether the strips of each group of `mesh` follow one another and together hold the group's indices.
bool MeshFits(ModelReader& reader, const core::ImageView& vtx, const VtxLayout& layout,
              const core::Record<VtxMesh>& mesh) {
  for (int64_t g = 0; g < mesh->StripGroupCount; ++g) {
    const auto group = StripGroupAt(vtx, layout, mesh, g);
    if (!group || !reader.Spend(RecordCost)) return false;
    int64_t indices = 0;
    for (int64_t s = 0; s < (*group)->StripCount; ++s) {
      const auto strip = StripAt(vtx, layout, *group, s);
      if (!strip || (*strip)->FirstIndex != indices || (*strip)->IndexCount < 0 || !reader.Spend(RecordCost))
        return false;
      indices += (*strip)->IndexCount;
    }
    if (indices != (*group)->IndexCount) return false;
  }
  return true;
}

bool FileFits(ModelReader& reader, const VtxLayout& layout) {
  const core::ImageView vtx = reader.Model.Vtx->View();
  const core::ImageView mdl = reader.Model.View();
  const auto header = reader.Model.Header();
  const auto vtxHeader = vtx.At<VtxHeader>(0);
  const auto parts = mdl.Array<StudioBodyPart>(header->BodyPartOffset, header->BodyPartCount);
  if (!vtxHeader || !parts) return false;
  for (int64_t b = 0; b < parts->Count(); ++b) {
    const auto part = (*parts)[b];
    const auto models = mdl.Array<StudioModel>(part.Offset() + part->ModelOffset, part->ModelCount);
    if (!models) return false;
    for (int64_t m = 0; m < models->Count(); ++m) {
      const auto vtxModel = VtxModelAt(vtx, b, m);
      if (!vtxModel || !reader.Spend(RecordCost)) return false;
      for (int64_t l = 0; l < (*vtxHeader)->LodCount; ++l) {
        const auto lod = VtxLodAt(vtx, *vtxModel, l);
        if (!lod || !reader.Spend(RecordCost)) return false;
        for (int64_t i = 0; i < (*models)[m]->MeshCount; ++i) {
          const auto mesh = VtxMeshAt(vtx, *lod, i);
          if (!mesh || !reader.Spend(RecordCost) || !MeshFits(reader, vtx, layout, *mesh)) return false;
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

VtxLayout FindVtxLayout(ModelReader& reader) {
  const VtxLayout expected = LayoutOfVersion(reader.Model.Header()->Version);
  if (FileFits(reader, expected)) return expected;
  for (const VtxLayout& layout : KnownLayouts) {
    if (layout == expected || !FileFits(reader, layout)) continue;
    reader.Note(reader.Model.Vtx->Path(), "Reading " + reader.Model.Vtx->Path() + " with strip groups of " +
                                              std::to_string(layout.StripGroupSize) + " and strips of " +
                                              std::to_string(layout.StripSize) + " bytes");
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

}  // namespace tarnwick::model

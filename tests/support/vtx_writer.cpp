#include <algorithm>

#include "model/vtx_records.h"
#include "support/model_builder.h"
#include "support/model_writer.h"

namespace tarnwick::tests {

namespace {

using model::VtxLayout;
using model::VtxStrip;
using model::VtxStripGroup;

VtxLayout LayoutOf(const ModelBuilder& model) {
  if (model.Layout.StripGroupSize != 0) return model.Layout;
  return model.Version == 49 ? VtxLayout{33, 27} : VtxLayout{25, 27};
}

size_t LodCount(const ModelBuilder& model) {
  size_t count = 0;
  for (const auto& part : model.BodyParts) {
    for (const auto& described : part.Models) count = std::max(count, described.SwitchDistances.size());
  }
  return count;
}

/// Adds a record that is `size` bytes long in this file, of which the head is known; gives its place.
int32_t ReserveHead(FileBuilder& vtx, int64_t size, const std::string& name) {
  vtx.Mark(name);
  return vtx.Append(std::string(static_cast<size_t>(size), '\0'));
}

/// Fills a strip group that is reserved already, with its strips, vertices and indices behind it. `owner` is the
/// group's number in its place name, such as "0.0.0.0.0".
void WriteStripGroup(const StripGroupDescription& group, const std::string& owner, const VtxLayout& layout,
                     FileBuilder& vtx) {
  std::vector<uint16_t> used;  // the group's vertices by their number in the mesh, each once
  std::vector<uint16_t> indices;
  std::vector<VtxStrip> strips;
  for (const StripDescription& strip : group) {
    VtxStrip record{};
    record.IndexCount = static_cast<int32_t>(strip.Vertices.size());
    record.FirstIndex = static_cast<int32_t>(indices.size());
    record.Flags = strip.IsTriangleStrip ? model::StripFlagTriangleStrip : uint8_t{1};
    for (const uint16_t vertex : strip.Vertices) {
      const auto known = std::find(used.begin(), used.end(), vertex);
      indices.push_back(static_cast<uint16_t>(known - used.begin()));
      if (known == used.end()) used.push_back(vertex);
    }
    strips.push_back(record);
  }

  VtxStripGroup head{};
  const auto groupPlace = static_cast<int32_t>(vtx.Place("group " + owner));
  head.StripCount = static_cast<int32_t>(strips.size());
  head.StripOffset = static_cast<int32_t>(vtx.Size()) - groupPlace;
  for (size_t i = 0; i < strips.size(); ++i) {
    const std::string name = "strip " + owner + "." + std::to_string(i);
    strips[i].VertexCount = static_cast<int32_t>(used.size());
    ReserveHead(vtx, layout.StripSize, name);
    vtx.Record<VtxStrip>(name) = strips[i];
  }
  const auto vertices = vtx.Reserve<model::VtxVertex>(static_cast<int64_t>(used.size()), "vertices " + owner);
  for (size_t i = 0; i < used.size(); ++i) vertices[static_cast<int64_t>(i)].MeshVertex = used[i];
  head.VertexCount = static_cast<int32_t>(used.size());
  head.VertexOffset = vertices.At(0) - groupPlace;
  const auto table = vtx.Reserve<model::VtxIndex>(static_cast<int64_t>(indices.size()), "indices " + owner);
  for (size_t i = 0; i < indices.size(); ++i) table[static_cast<int64_t>(i)].Vertex = indices[i];
  head.IndexCount = static_cast<int32_t>(indices.size());
  head.IndexOffset = table.At(0) - groupPlace;
  vtx.Record<VtxStripGroup>("group " + owner) = head;
}

void WriteMeshes(const ModelDescription& model, size_t lod, const std::string& owner, const VtxLayout& layout,
                 FileBuilder& vtx) {
  const auto meshes = vtx.Reserve<model::VtxMesh>(static_cast<int64_t>(model.Meshes.size()), "meshes " + owner);
  for (int64_t k = 0; k < meshes.Count; ++k) {
    const MeshDescription& mesh = model.Meshes[static_cast<size_t>(k)];
    const LodDescription groups = lod < mesh.Lods.size() ? mesh.Lods[lod] : LodDescription{};
    meshes[k].StripGroupCount = static_cast<int32_t>(groups.size());
    meshes[k].StripGroupOffset = meshes.To(vtx.Size(), k);
    const std::string meshOwner = owner + "." + std::to_string(k) + ".";
    for (size_t i = 0; i < groups.size(); ++i) {
      ReserveHead(vtx, layout.StripGroupSize, "group " + meshOwner + std::to_string(i));
    }
    for (size_t i = 0; i < groups.size(); ++i) {
      WriteStripGroup(groups[i], meshOwner + std::to_string(i), layout, vtx);
    }
  }
}

void WriteLods(const ModelDescription& model, size_t lodCount, const std::string& owner, const VtxLayout& layout,
               FileBuilder& vtx) {
  const auto lods = vtx.Reserve<model::VtxModelLod>(static_cast<int64_t>(lodCount), "lods " + owner);
  for (int64_t l = 0; l < lods.Count; ++l) {
    const auto lod = static_cast<size_t>(l);
    lods[l].MeshCount = static_cast<int32_t>(model.Meshes.size());
    lods[l].MeshOffset = lods.To(vtx.Size(), l);
    lods[l].SwitchDistance = lod < model.SwitchDistances.size() ? model.SwitchDistances[lod] : 0;
    WriteMeshes(model, lod, owner + "." + std::to_string(l), layout, vtx);
  }
}

}  // namespace

void WriteVtx(const ModelBuilder& model, FileBuilder& vtx) {
  const size_t lodCount = LodCount(model);
  const auto header = vtx.Reserve<model::VtxHeader>(1, "header");
  const auto parts = vtx.Reserve<model::VtxBodyPart>(static_cast<int64_t>(model.BodyParts.size()), "body parts");
  header[0].Version = model.VtxVersion;
  header[0].LodCount = static_cast<int32_t>(lodCount);
  header[0].BodyPartCount = static_cast<int32_t>(parts.Count);
  header[0].BodyPartOffset = parts.At(0);
  for (int64_t b = 0; b < parts.Count; ++b) {
    const auto bodyPart = static_cast<size_t>(b);
    const std::vector<ModelDescription>& described = model.BodyParts[bodyPart].Models;
    const auto models =
        vtx.Reserve<model::VtxModel>(static_cast<int64_t>(described.size()), PlaceName("models", {bodyPart}));
    parts[b].ModelCount = static_cast<int32_t>(models.Count);
    parts[b].ModelOffset = parts.To(models.Offset, b);
    for (int64_t m = 0; m < models.Count; ++m) {
      models[m].LodCount = static_cast<int32_t>(lodCount);
      models[m].LodOffset = models.To(vtx.Size(), m);
      WriteLods(described[static_cast<size_t>(m)], lodCount, std::to_string(b) + "." + std::to_string(m),
                LayoutOf(model), vtx);
    }
  }
}

}  // namespace tarnwick::tests

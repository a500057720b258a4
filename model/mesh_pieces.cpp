#include "model/mesh_pieces.h"

#include <algorithm>
#include <span>
#include <utility>

#include "model/vtx_layout.h"
#include "model/vtx_tree.h"

namespace tarnwick::model {

namespace {

/// What a corner costs a reader, and a triangle on top of the name of its material.
constexpr int64_t CornerCost = 80;
constexpr int64_t TriangleCost = 5;

/// The highest vertex of the mesh that `indices` name among the `vertices` of their group, or one that is higher and is
/// there too: vertices are mostly fewer than indices, and mostly all good.
int64_t HighestMeshVertex(const MeshVertexData& mesh, std::span<const VtxIndex> indices,
                          std::span<const VtxVertex> vertices) {
  int64_t highest = 0;
  if (vertices.size() <= indices.size()) {
    for (const VtxVertex& vertex : vertices) highest = std::max<int64_t>(highest, vertex.MeshVertex);
    if (mesh.First >= 0 && GetMeshVertex(mesh, highest) != nullptr) return highest;
  }
  highest = 0;
  for (const VtxIndex index : indices) highest = std::max<int64_t>(highest, vertices[index.Vertex].MeshVertex);
  return highest;
}

/// Checks the strip's indices and the vertices that they name. False, told, if one leads nowhere.
bool GatherStrip(ModelReader& reader, const core::Record<VtxStripGroup>& group, const core::Record<VtxStrip>& strip,
                 MeshPiece& piece) {
  const core::FileImage& file = *reader.Model.Vtx;
  const core::ImageView vtx = file.View();
  // An incomplete last triple can reach one index past the strip's end.
  const int64_t count = strip->IndexCount;
  const int64_t reach = count % 3 == 2 ? count + 1 : count;
  const int64_t offset = group.Offset() + group->IndexOffset + int64_t{strip->FirstIndex} * int64_t{sizeof(VtxIndex)};
  const auto indices = vtx.Array<VtxIndex>(offset, reach);
  if (strip->FirstIndex < 0 || !indices) {
    reader.DamagedTable(file.Path(), "index array", offset, count, vtx.Size());
    return false;
  }
  uint16_t highestIndex = 0;  // no wider than the indices, so that many are compared at once
  for (const VtxIndex index : indices->Records()) {
    highestIndex = index.Vertex > highestIndex ? index.Vertex : highestIndex;
  }
  int64_t highest = highestIndex;
  const int64_t groupOffset = group.Offset() + group->VertexOffset;
  const auto vertices = vtx.Array<VtxVertex>(groupOffset, highest + 1);
  if (!vertices) {
    reader.DamagedTable(file.Path(), "strip group's vertex table", groupOffset, highest + 1, vtx.Size());
    return false;
  }
  highest = HighestMeshVertex(piece.Vertices, indices->Records(), vertices->Records());
  if (piece.Vertices.First < 0 || GetMeshVertex(piece.Vertices, highest) == nullptr) {
    reader.Damaged(file.Path(), "strip", strip.Offset(),
                   "names vertex " + std::to_string(highest) + " of a mesh that begins at vertex " +
                       std::to_string(piece.Vertices.First) + "; the vertex file holds " +
                       std::to_string(piece.Vertices.Vertices.Count()));
    return false;
  }
  piece.Strips.push_back({*indices, *vertices, count});
  return true;
}

/// Adds the triangle lists of one mesh to `pieces`; none of them if its material is not there. False if the stage is to
/// end here.
bool GatherMesh(ModelReader& reader, const core::Record<StudioMesh>& mesh, int64_t number,
                const core::Record<VtxMesh>& vtxMesh, MeshPieces& pieces) {
  const core::FileImage& file = *reader.Model.Vtx;
  MeshPiece* piece = nullptr;
  for (int64_t g = 0; g < vtxMesh->StripGroupCount; ++g) {
    const auto group = StripGroupAt(file.View(), reader.Model.Layout, vtxMesh, g);
    if (!group) {
      reader.DamagedTable(file.Path(), "strip group table", vtxMesh.Offset() + vtxMesh->StripGroupOffset,
                          vtxMesh->StripGroupCount, file.View().Size());
      return false;
    }
    if (!reader.Spend(RecordCost)) return false;
    for (int64_t s = 0; s < (*group)->StripCount; ++s) {
      const auto strip = StripAt(file.View(), reader.Model.Layout, *group, s);
      if (!strip) {
        reader.DamagedTable(file.Path(), "strip table", group->Offset() + (*group)->StripOffset, (*group)->StripCount,
                            file.View().Size());
        return false;
      }
      if (!reader.Spend(RecordCost)) return false;
      if ((*strip)->IndexCount <= 0) continue;
      if (((*strip)->Flags & StripFlagTriangleStrip) != 0) {
        ++pieces.LeftOut;
        continue;
      }
      if (piece == nullptr) {
        const auto vertices = GetMeshVertexData(reader, mesh);
        if (!vertices) return false;
        const auto material = TextureName(reader.Model, mesh->Material);
        if (!material) {
          reader.Damaged(reader.Model.Mdl.Path(), "mesh", mesh.Offset(),
                         "names texture " + std::to_string(mesh->Material) + ", which is not in the file");
          return true;
        }
        piece = &pieces.Meshes.emplace_back(MeshPiece{*material, *vertices, {}, number});
      }
      const int64_t count = (*strip)->IndexCount;
      if (!reader.Spend(count * CornerCost + count / 3 * (TriangleCost + static_cast<int64_t>(piece->Material.size()))))
        return false;
      if (!GatherStrip(reader, *group, *strip, *piece)) return false;
    }
  }
  return true;
}

}  // namespace

MeshPieces GatherMeshPieces(ModelReader& reader, const core::Record<StudioModel>& model,
                            const core::Record<VtxModelLod>& lod) {
  MeshPieces pieces;
  const core::FileImage& vtx = *reader.Model.Vtx;
  const auto meshes = reader.Table<StudioMesh>("mesh table", model.Offset() + model->MeshOffset, model->MeshCount);
  if (!meshes) {
    pieces.Complete = false;
    return pieces;
  }
  for (int64_t i = 0; i < meshes->Count(); ++i) {
    const auto vtxMesh = VtxMeshAt(vtx.View(), lod, i);
    if (!vtxMesh) {
      reader.DamagedTable(vtx.Path(), "mesh table", lod.Offset() + lod->MeshOffset, meshes->Count(), vtx.View().Size());
    }
    if (!vtxMesh || !reader.Spend(RecordCost) || !GatherMesh(reader, (*meshes)[i], i, *vtxMesh, pieces)) {
      pieces.Complete = false;
      return pieces;
    }
  }
  return pieces;
}

}  // namespace tarnwick::model

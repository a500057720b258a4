#include "support/layout_checks.h"

#include <algorithm>

namespace tarnwick::tests {

using namespace model;

namespace {

#pragma pack(push, 1)
struct BoneState {
  int32_t Slot, Bone;
};
struct MaterialList {
  int32_t Count, Offset;
};
#pragma pack(pop)

}  // namespace

void LayoutChecks::CheckVtx() {
  const auto header = VtxTable<VtxHeader>("header", 0, 1);
  if (header.Count() == 0) return;
  Expect(header[0]->Version == 7, ".vtx version ", int32_t{header[0]->Version});
  Expect(header[0]->Checksum == m_header.Checksum, "the .vtx file's checksum differs");
  Expect(header[0]->LodCount == m_lods, "the .vtx file has ", int32_t{header[0]->LodCount}, " levels, the .vvd file ",
         m_lods);
  Expect(m_vtx.Value<int32_t>(4) == 24 && m_vtx.Value<uint16_t>(8) == 53 && m_vtx.Value<uint16_t>(10) == 9 &&
             m_vtx.Value<int32_t>(12) == 3,
         "the .vtx header's limits are not 24, 53, 9, 3");
  Expect(header[0]->BodyPartOffset == 36 && header[0]->BodyPartCount == static_cast<int32_t>(m_parts.size()),
         "the .vtx file has ", int32_t{header[0]->BodyPartCount}, " body parts");
  const auto parts = VtxTable<VtxBodyPart>("body parts", header[0]->BodyPartOffset, header[0]->BodyPartCount);
  for (int64_t p = 0; p < parts.Count() && p < static_cast<int64_t>(m_parts.size()); ++p) {
    const auto& models = m_parts[static_cast<size_t>(p)];
    Expect(parts[p]->ModelCount == static_cast<int32_t>(models.size()), ".vtx body part ", p, " has ",
           int32_t{parts[p]->ModelCount}, " models");
    const auto records = VtxTable<VtxModel>("models", parts[p].Offset() + parts[p]->ModelOffset, parts[p]->ModelCount);
    for (int64_t m = 0; m < records.Count() && m < static_cast<int64_t>(models.size()); ++m) {
      CheckVtxModel(records[m], models[static_cast<size_t>(m)]);
    }
  }
  const auto lists = VtxTable<MaterialList>("material lists", m_vtx.Value<int32_t>(0x18).value_or(0), m_lods);
  for (int64_t k = 0; k < lists.Count(); ++k) {
    Expect(lists[k]->Count == 0, "level ", k, " replaces materials");
  }
  if (m_usual) {
    Expect(m_vtxBytes == m_vtx.Size(), "the .vtx file's tables take ", m_vtxBytes, " of ", m_vtx.Size(), " bytes");
  }
}

void LayoutChecks::CheckVtxModel(const core::Record<VtxModel>& model, const ModelFacts& facts) {
  Expect(model->LodCount == m_lods, "a .vtx model has ", int32_t{model->LodCount}, " levels");
  const auto lods = VtxTable<VtxModelLod>("levels", model.Offset() + model->LodOffset, model->LodCount);
  float last = 0;
  for (int64_t k = 0; k < lods.Count(); ++k) {
    const float distance = lods[k]->SwitchDistance;
    const bool isShadow = distance == -1.0f;
    Expect(k == 0 ? distance == 0 : isShadow || distance > last, "level ", k, " begins at ", distance);
    if (isShadow) Expect((m_header.Flags & ModelFlagShadowLod) != 0 && k + 1 == m_lods, "a shadow level at ", k);
    last = distance;
    Expect(lods[k]->MeshCount == static_cast<int32_t>(facts.Meshes.size()), "level ", k, " has ",
           int32_t{lods[k]->MeshCount}, " meshes");
    const auto meshes = VtxTable<VtxMesh>("meshes", lods[k].Offset() + lods[k]->MeshOffset, lods[k]->MeshCount);
    for (int64_t i = 0; i < meshes.Count() && i < static_cast<int64_t>(facts.Meshes.size()); ++i) {
      const MeshFacts& mesh = facts.Meshes[static_cast<size_t>(i)];
      Expect(meshes[i]->Flags == (mesh.Record.Kind == MeshKindEyeball ? 2 : 0), "a .vtx mesh has the flags ",
             int{meshes[i]->Flags});
      const auto groups = VtxTable<VtxStripGroup>("strip groups", meshes[i].Offset() + meshes[i]->StripGroupOffset,
                                                  meshes[i]->StripGroupCount);
      for (const auto group : groups) CheckGroup(group, mesh, k);
    }
  }
}

void LayoutChecks::CheckGroup(const core::Record<VtxStripGroup>& group, const MeshFacts& mesh, int64_t lod) {
  const auto vertices = VtxTable<VtxVertex>("vertices", group.Offset() + group->VertexOffset, group->VertexCount);
  const auto indices = VtxTable<VtxIndex>("indices", group.Offset() + group->IndexOffset, group->IndexCount);
  const auto strips = VtxTable<VtxStrip>("strips", group.Offset() + group->StripOffset, group->StripCount);
  int64_t next = 0;
  for (const auto index : indices) {
    Expect(index->Vertex <= next && index->Vertex < vertices.Count(), "an index ", int{index->Vertex},
           " stands before ", next);
    next = std::max<int64_t>(next, int64_t{index->Vertex} + 1);
  }
  Expect(next == vertices.Count(), "a group has ", vertices.Count(), " vertices and uses ", next);
  bool any = false, all = true;
  for (int64_t i = 0; i + 2 < indices.Count(); i += 3) {
    bool moved = false;
    for (int64_t k = 0; k < 3; ++k) {
      const int64_t number = indices[i + k]->Vertex;
      if (number < vertices.Count()) moved |= mesh.Moved.count(vertices[number]->MeshVertex) != 0;
    }
    any |= moved;
    all &= moved;
  }
  if (lod == 0) {
    Expect(!any || all, "some triangles of a group are moved by flexes, others are not");
    Expect(group->Flags == (any ? 7 : 2) || (any && group->Flags == 6), "a group has the flags ", int{group->Flags});
  }
  for (const auto vertex : vertices) {
    Expect(vertex->MeshVertex < mesh.Record.LodVertexCounts[lod], "level ", lod, " uses vertex ",
           int{vertex->MeshVertex}, " of ", int32_t{mesh.Record.LodVertexCounts[lod]});
  }
  int64_t firstIndex = 0, firstVertex = 0;
  for (const auto strip : strips) {
    Expect(strip->FirstIndex == firstIndex && strip->FirstVertex == firstVertex && strip->Flags == 1 &&
               strip->IndexCount % 3 == 0,
           "a strip begins at index ", int32_t{strip->FirstIndex}, ", vertex ", int32_t{strip->FirstVertex});
    firstIndex += strip->IndexCount;
    CheckStrip(strip, vertices, firstVertex, mesh);
    firstVertex += strip->VertexCount;
  }
  Expect(firstIndex == indices.Count() && firstVertex == vertices.Count(), "strips hold ", firstIndex, " of ",
         indices.Count(), " indices");
}

void LayoutChecks::CheckStrip(const core::Record<VtxStrip>& strip, const core::RecordArray<VtxVertex>& vertices,
                              int64_t first, const MeshFacts& mesh) {
  const bool isStatic = (m_header.Flags & ModelFlagStatic) != 0;
  const int64_t entries = strip->BoneStateCount;
  // For an empty table 8 bytes are kept.
  const auto table =
      VtxTable<BoneState>("bone tables", strip.Offset() + strip->BoneStateOffset, std::max<int64_t>(entries, 1));
  if (isStatic) {
    Expect(entries == 0 && strip->BoneCount == 0, "a strip of a static model has bones");
  } else {
    Expect(entries >= 1 && entries <= 53, "a strip has ", entries, " bones");
  }
  int most = 0;
  std::set<int32_t> used;
  for (int64_t i = first; i < first + strip->VertexCount && i < vertices.Count(); ++i) {
    const VtxVertex vertex = *vertices[i];
    most = std::max<int>(most, vertex.BoneCount);
    const size_t number = static_cast<size_t>(mesh.First) + vertex.MeshVertex;
    if (isStatic) {
      Expect(vertex.BoneCount == 0, "a vertex of a static model has ", int{vertex.BoneCount}, " weights");
      continue;
    }
    if (number >= m_vertices.size()) continue;
    Expect(vertex.BoneCount == m_vertices[number].WeightCount, "a .vtx vertex has ", int{vertex.BoneCount},
           " weights, the .vvd vertex ", int{m_vertices[number].WeightCount});
    for (int k = 0; k < vertex.BoneCount && k < 3; ++k) {
      if (!Expect(vertex.Bones[k] < table.Count(), "a vertex names slot ", int{vertex.Bones[k]})) continue;
      used.insert(vertex.Bones[k]);
      const int32_t bone = table[vertex.Bones[k]]->Bone;
      Expect(bone == m_vertices[number].Bones[k], "slot ", int{vertex.Bones[k]}, " is bone ", bone,
             ", the .vvd vertex follows ", int{m_vertices[number].Bones[k]});
    }
  }
  Expect(most == strip->BoneCount, "a strip says ", int{strip->BoneCount}, " weights and has ", most);
  Expect(isStatic || static_cast<int64_t>(used.size()) == entries, "a strip has ", entries, " bones and uses ",
         used.size());
}

}  // namespace tarnwick::tests

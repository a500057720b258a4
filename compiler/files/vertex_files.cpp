// The .vvd and the .vtx file.

#include <algorithm>

#include "compiler/files/byte_writer.h"
#include "compiler/files/model_parts.h"

namespace tarnwick::compiler {

namespace {

#pragma pack(push, 1)
struct VtxHead {
  int32_t Version = 7;
  int32_t CacheSize = 24;
  uint16_t BonesOfStrip = 53;
  uint16_t BonesOfTriangle = 9;
  int32_t BonesOfVertex = 3;
  int32_t Checksum = 0;
  int32_t LodCount = 0;
  int32_t MaterialListOffset = 0;
  int32_t BodyPartCount = 0;
  int32_t BodyPartOffset = 0;
};
static_assert(sizeof(VtxHead) == 36);
struct BoneEntry {
  int32_t Slot;
  int32_t Bone;
};
struct MaterialList {
  int32_t Count;
  int32_t Offset;
};
#pragma pack(pop)

/// A run of vertices of one level in one mesh.
struct Run {
  size_t Lod;
  size_t First;  // among the vertices as the meshes number them
  size_t Count;
};

std::vector<Run> RunsOf(const BuiltMeshes& meshes) {
  std::vector<Run> runs;
  for (const BuiltBodyPart& part : meshes.BodyParts) {
    for (const BuiltModel& model : part.Models) {
      for (const BuiltMesh& mesh : model.Meshes) {
        const auto first = static_cast<size_t>(model.FirstVertex) + static_cast<size_t>(mesh.FirstVertex);
        for (size_t i = first; i < first + static_cast<size_t>(mesh.VertexCount); ++i) {
          const size_t lod = meshes.VertexLods[i];
          if (runs.empty() || runs.back().Lod != lod || i == first) runs.push_back({lod, i, 0});
          ++runs.back().Count;
        }
      }
    }
  }
  return runs;
}

size_t MeshesWithVertices(const BuiltMeshes& meshes) {
  size_t count = 0;
  for (const BuiltBodyPart& part : meshes.BodyParts) {
    for (const BuiltModel& model : part.Models) {
      for (const BuiltMesh& mesh : model.Meshes) count += mesh.VertexCount > 0 ? 1 : 0;
    }
  }
  return count;
}

}  // namespace

std::string WriteVvd(const BuiltMeshes& meshes) {
  const std::vector<Run> runs = RunsOf(meshes);
  model::VvdHeader header = {};
  header.Id = model::VvdId;
  header.Version = 4;
  header.LodCount = meshes.LodCount;
  for (int lod = 0; lod < 8; ++lod) {
    const int used = std::min(lod, meshes.LodCount - 1);
    for (const uint8_t vertexLod : meshes.VertexLods) header.LodVertexCount[lod] += vertexLod >= used ? 1 : 0;
  }
  // In the file the vertices of the highest level come first.
  std::vector<size_t> order(runs.size());
  for (size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::ranges::stable_sort(order, [&](size_t a, size_t b) { return runs[a].Lod > runs[b].Lod; });
  std::vector<size_t> places(runs.size());
  size_t place = 0;
  for (const size_t run : order) {
    places[run] = place;
    place += runs[run].Count;
  }
  const bool fixups = meshes.LodCount > 1 && MeshesWithVertices(meshes) > 1;
  header.FixupCount = fixups ? static_cast<int32_t>(runs.size()) : 0;
  header.FixupOffset = sizeof header;
  ByteWriter writer;
  writer.Reserve<model::VvdHeader>(1);
  for (size_t i = 0; fixups && i < runs.size(); ++i) {
    writer.Append(model::VvdFixup{static_cast<int32_t>(runs[i].Lod), static_cast<int32_t>(places[i]),
                                  static_cast<int32_t>(runs[i].Count)});
  }
  writer.Align(16);
  header.VertexOffset = static_cast<int32_t>(writer.Size());
  for (const size_t run : order) {
    for (size_t i = 0; i < runs[run].Count; ++i) writer.Append(meshes.Vertices[runs[run].First + i]);
  }
  header.TangentOffset = static_cast<int32_t>(writer.Size());
  for (const size_t run : order) {
    for (size_t i = 0; i < runs[run].Count; ++i) writer.Append(meshes.Tangents[runs[run].First + i]);
  }
  writer.Put(0, header);
  return writer.Take();
}

namespace {

/// Writes the levels of the tree one after the other; each is walked in the same order.
class VtxWriter {
 public:
  explicit VtxWriter(const BuiltMeshes& meshes) : m_meshes(meshes) {}

  std::string Write() {
    VtxHead head;
    head.LodCount = m_meshes.LodCount;
    head.BodyPartCount = static_cast<int32_t>(m_meshes.BodyParts.size());
    m_writer.Reserve<VtxHead>(1);
    head.BodyPartOffset = static_cast<int32_t>(m_writer.Reserve<model::VtxBodyPart>(m_meshes.BodyParts.size()));
    WriteUpperTree(head.BodyPartOffset);
    WriteGroups();
    WriteContents();
    head.MaterialListOffset = static_cast<int32_t>(m_writer.Size());
    for (int32_t lod = 0; lod < m_meshes.LodCount; ++lod) {
      m_writer.Append(MaterialList{0, m_meshes.LodCount > 1 ? -8 * lod : 0});
    }
    m_writer.Put(0, head);
    return m_writer.Take();
  }

 private:
  struct Group {
    int64_t Place;
    const BuiltStripGroup* Source;
    std::vector<int64_t> Strips;
    model::VtxStripGroup Record;
  };
  int32_t From(int64_t record) const { return static_cast<int32_t>(m_writer.Size() - record); }

  void WriteUpperTree(int64_t parts) {
    std::vector<std::pair<int64_t, const BuiltModelTriangles*>> models;
    std::vector<const BuiltModel*> builtModels;
    for (size_t i = 0; i < m_meshes.BodyParts.size(); ++i) {
      const int64_t at = parts + static_cast<int64_t>(i * sizeof(model::VtxBodyPart));
      const size_t count = m_meshes.BodyParts[i].Models.size();
      m_writer.Put(at, model::VtxBodyPart{static_cast<int32_t>(count), From(at)});
      for (size_t k = 0; k < count; ++k) {
        models.emplace_back(m_writer.Reserve<model::VtxModel>(1), &m_meshes.Triangles[i][k]);
        builtModels.push_back(&m_meshes.BodyParts[i].Models[k]);
      }
    }
    std::vector<int64_t> lods;
    for (const auto& [at, model] : models) {
      m_writer.Put(at, model::VtxModel{static_cast<int32_t>(model->Lods.size()), From(at)});
      for (size_t k = 0; k < model->Lods.size(); ++k) lods.push_back(m_writer.Reserve<model::VtxModelLod>(1));
    }
    size_t lod = 0;
    for (size_t i = 0; i < models.size(); ++i) {
      for (const BuiltModelLod& level : models[i].second->Lods) {
        const int64_t at = lods[lod++];
        m_writer.Put(at, model::VtxModelLod{static_cast<int32_t>(level.Meshes.size()), From(at), level.SwitchDistance});
        for (size_t k = 0; k < level.Meshes.size(); ++k) {
          const bool eye = k < builtModels[i]->Meshes.size() && builtModels[i]->Meshes[k].Eyeball >= 0;
          m_lodMeshes.push_back({m_writer.Reserve<model::VtxMesh>(1), &level.Meshes[k], eye});
        }
      }
    }
  }
  void WriteGroups() {
    for (const LodMesh& mesh : m_lodMeshes) {
      model::VtxMesh record = {static_cast<int32_t>(mesh.Source->Groups.size()), From(mesh.Place),
                               static_cast<uint8_t>(mesh.Eye ? 2 : 0)};
      m_writer.Put(mesh.Place, record);
      for (const BuiltStripGroup& group : mesh.Source->Groups) {
        m_groups.push_back({m_writer.Reserve<model::VtxStripGroup>(1), &group, {}, {}});
      }
    }
    for (Group& group : m_groups) {
      group.Record.StripCount = static_cast<int32_t>(group.Source->Strips.size());
      group.Record.StripOffset = From(group.Place);
      group.Record.Flags = group.Source->Flags;
      for (size_t i = 0; i < group.Source->Strips.size(); ++i) {
        group.Strips.push_back(m_writer.Reserve<model::VtxStrip>(1));
      }
    }
  }
  void WriteContents() {
    for (Group& group : m_groups) {
      group.Record.VertexCount = static_cast<int32_t>(group.Source->Vertices.size());
      group.Record.VertexOffset = From(group.Place);
      for (const model::VtxVertex& vertex : group.Source->Vertices) m_writer.Append(vertex);
    }
    for (Group& group : m_groups) {
      group.Record.IndexCount = static_cast<int32_t>(group.Source->Indices.size());
      group.Record.IndexOffset = From(group.Place);
      for (const uint16_t index : group.Source->Indices) m_writer.Append(index);
      m_writer.Put(group.Place, group.Record);
    }
    for (const Group& group : m_groups) {
      for (size_t i = 0; i < group.Strips.size(); ++i) {
        const BuiltStrip& strip = group.Source->Strips[i];
        constexpr uint8_t TriangleList = 1;
        m_writer.Put(group.Strips[i], model::VtxStrip{strip.IndexCount, strip.FirstIndex, strip.VertexCount,
                                                      strip.FirstVertex, strip.MostWeights, TriangleList,
                                                      static_cast<int32_t>(strip.Bones.size()), From(group.Strips[i])});
        for (size_t slot = 0; slot < strip.Bones.size(); ++slot) {
          m_writer.Append(BoneEntry{static_cast<int32_t>(slot), strip.Bones[slot]});
        }
        if (strip.Bones.empty()) m_writer.Append(BoneEntry{0, 0});  // its room is kept
      }
    }
  }

  struct LodMesh {
    int64_t Place;
    const BuiltLodMesh* Source;
    bool Eye;
  };
  const BuiltMeshes& m_meshes;
  ByteWriter m_writer;
  std::vector<LodMesh> m_lodMeshes;
  std::vector<Group> m_groups;
};

}  // namespace

std::string WriteVtx(const BuiltMeshes& meshes) {
  return VtxWriter(meshes).Write();
}

}  // namespace tarnwick::compiler

#include "compiler/mesh/strip_groups.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tarnwick::compiler {

namespace {

/// The bones that a strip has at hand, slot by slot.
class BoneSlots {
 public:
  BoneSlots() { m_slots.fill(None); }

  /// How many bones of the triangle's vertices have no slot yet.
  size_t CountNew(std::span<const model::VvdVertex> vertices, const MeshTriangle& triangle) const {
    std::array<uint8_t, 9> met{};
    std::ptrdiff_t count = 0;
    for (const uint32_t corner : triangle) {
      const model::VvdVertex& vertex = vertices[corner];
      for (int i = 0; i < vertex.WeightCount; ++i) {
        const uint8_t bone = vertex.Bones[i];
        if (m_slots[bone] != None || std::find(met.begin(), met.begin() + count, bone) != met.begin() + count) continue;
        met[static_cast<size_t>(count++)] = bone;
      }
    }
    return static_cast<size_t>(count);
  }

  uint8_t SlotOf(uint8_t bone) {
    if (m_slots[bone] == None) {
      m_slots[bone] = static_cast<int16_t>(Bones.size());
      Bones.push_back(bone);
    }
    return static_cast<uint8_t>(m_slots[bone]);
  }

  std::vector<int32_t> TakeBones() {
    m_slots.fill(None);
    return std::exchange(Bones, {});
  }

  std::vector<int32_t> Bones;

 private:
  static constexpr int16_t None = -1;
  std::array<int16_t, 256> m_slots;
};

/// Makes groups of one kind from triangles that come one by one.
class GroupMaker {
 public:
  GroupMaker(std::span<const model::VvdVertex> vertices, bool isStatic, uint8_t flags)
      : m_vertices(vertices), m_static(isStatic), m_flags(flags), m_numbers(vertices.size()) {}

  void Add(const MeshTriangle& triangle) {
    if (m_groups.empty()) BeginGroup();
    if (!m_static && m_slots.Bones.size() + m_slots.CountNew(m_vertices, triangle) > MostStripBones) EndStrip();
    // A vertex of an earlier strip stands once more in this one, so a group can be full before the mesh is.
    if (m_groups.back().Vertices.size() + 3 > MostMeshVertices) {
      size_t fresh = 0;
      for (const uint32_t corner : triangle) fresh += m_numbers[corner] == 0 ? size_t{1} : size_t{0};
      if (m_groups.back().Vertices.size() + fresh > MostMeshVertices) {
        EndStrip();
        BeginGroup();
      }
    }
    BuiltStripGroup& group = m_groups.back();
    for (const uint32_t corner : triangle) group.Indices.push_back(NumberOf(corner));
  }

  std::vector<BuiltStripGroup> Take() {
    if (!m_groups.empty()) EndStrip();
    return std::move(m_groups);
  }

 private:
  void BeginGroup() {
    m_groups.emplace_back().Flags = m_flags;
    m_strip = {};
  }

  uint16_t NumberOf(uint32_t corner) {
    BuiltStripGroup& group = m_groups.back();
    uint32_t& number = m_numbers[corner];
    if (number == 0) {
      m_used.push_back(corner);
      group.Vertices.push_back(RecordOf(corner));
      number = static_cast<uint32_t>(group.Vertices.size());
    }
    return static_cast<uint16_t>(number - 1);
  }

  model::VtxVertex RecordOf(uint32_t corner) {
    model::VtxVertex record = {{0, 1, 2}, 0, static_cast<uint16_t>(corner), {0, 0, 0}};
    if (m_static) return record;
    const model::VvdVertex& vertex = m_vertices[corner];
    record.BoneCount = std::min<uint8_t>(vertex.WeightCount, 3);
    for (int i = 0; i < record.BoneCount; ++i) record.Bones[i] = m_slots.SlotOf(vertex.Bones[i]);
    m_strip.MostWeights = std::max<int16_t>(m_strip.MostWeights, record.BoneCount);
    return record;
  }

  /// Closes the strip that is being made; the next begins with the next triangle and names its vertices anew.
  void EndStrip() {
    BuiltStripGroup& group = m_groups.back();
    m_strip.IndexCount = static_cast<int32_t>(group.Indices.size()) - m_strip.FirstIndex;
    m_strip.VertexCount = static_cast<int32_t>(group.Vertices.size()) - m_strip.FirstVertex;
    m_strip.Bones = m_slots.TakeBones();
    if (m_strip.IndexCount > 0) group.Strips.push_back(std::move(m_strip));
    m_strip = {};
    m_strip.FirstIndex = static_cast<int32_t>(group.Indices.size());
    m_strip.FirstVertex = static_cast<int32_t>(group.Vertices.size());
    for (const uint32_t corner : m_used) m_numbers[corner] = 0;
    m_used.clear();
  }

  std::span<const model::VvdVertex> m_vertices;
  bool m_static;
  uint8_t m_flags;
  std::vector<BuiltStripGroup> m_groups;
  BuiltStrip m_strip;
  BoneSlots m_slots;
  std::vector<uint32_t> m_numbers;  // of a vertex of the mesh in the strip that is being made, + 1; 0 for none
  std::vector<uint32_t> m_used;
};

}  // namespace

std::vector<BuiltStripGroup> MakeStripGroups(std::span<const model::VvdVertex> vertices,
                                             std::span<const MeshTriangle> triangles, const StripGroupForm& form) {
  constexpr uint8_t AllFlexed = StripGroupFlexed | StripGroupHardware | StripGroupDeltaFlexed;
  GroupMaker moved(vertices, form.Static, AllFlexed), still(vertices, form.Static, StripGroupHardware);
  for (const MeshTriangle& triangle : triangles) {
    const bool isMoved = !form.Moved.empty() && std::any_of(triangle.begin(), triangle.end(),
                                                            [&](uint32_t corner) { return form.Moved[corner] != 0; });
    (isMoved ? moved : still).Add(triangle);
  }
  std::vector<BuiltStripGroup> groups = moved.Take();
  for (BuiltStripGroup& group : still.Take()) groups.push_back(std::move(group));
  return groups;
}

std::vector<MeshTriangle> TrianglesOf(const std::vector<BuiltStripGroup>& groups) {
  std::vector<MeshTriangle> triangles;
  for (const BuiltStripGroup& group : groups) {
    for (size_t i = 0; i + 2 < group.Indices.size(); i += 3) {
      triangles.push_back({group.Vertices[group.Indices[i]].MeshVertex, group.Vertices[group.Indices[i + 1]].MeshVertex,
                           group.Vertices[group.Indices[i + 2]].MeshVertex});
    }
  }
  return triangles;
}

}  // namespace tarnwick::compiler

#include "decompiler/writers/mesh_smd.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace tarnwick::decompiler {

namespace {

int WeightCount(const VvdVertex& vertex) {
  return std::min<int>(vertex.WeightCount, 3);
}

smd::Triple Turned(const Vec3& v, bool back) {
  if (!back) return {v.x, v.y, v.z};
  return {v.y, 0.0f - v.x, v.z};
}

/// Fills `corner`, what it held does not matter.
void MakeVertex(const VvdVertex& vertex, const MeshSmdForm& form, smd::Vertex& corner) {
  corner.Bone = MainBone(vertex);
  corner.Position = Turned(vertex.Position, form.TurnedBack);
  corner.Normal = Turned(vertex.Normal, form.TurnedBack);
  corner.U = vertex.U;
  corner.V = (form.VFromOne ? 1.0f : 0.0f) - vertex.V;
  corner.LinkCount = WeightCount(vertex);
  for (int i = 0; i < corner.LinkCount; ++i) {
    corner.Links[static_cast<size_t>(i)] = {vertex.Bones[i], vertex.Weights[i]};
  }
}

}  // namespace

int MainBone(const VvdVertex& vertex) {
  int bone = 0;
  float highest = 0;
  for (int i = 0; i < WeightCount(vertex); ++i) {
    if (vertex.Weights[i] > highest) {
      highest = vertex.Weights[i];
      bone = vertex.Bones[i];
    }
  }
  return bone;
}

const smd::LineList* MeshLines::Get() {
  constexpr int64_t MostVertices = 16'384;  // 2 MB of usual lines
  std::call_once(m_sought, [this] {
    if (m_count > MostVertices) return;
    smd::LineList& lines = m_lines.emplace(static_cast<size_t>(m_count));
    // Some at a time: a vertex that was made just before could not be loaded as a whole yet.
    constexpr int64_t Some = 16;
    std::array<smd::Vertex, Some> made;
    for (int64_t i = 0; i < m_count; i += Some) {
      const auto count = static_cast<size_t>(std::min(Some, m_count - i));
      for (size_t k = 0; k < count; ++k) MakeVertex(*m_vertices[i + static_cast<int64_t>(k)], m_form, made[k]);
      lines.Add(std::span(made).first(count), !m_form.Unweighted);
    }
  });
  return m_lines ? &*m_lines : nullptr;
}

namespace {

/// Writes the triangles. `writeTriangle(material, corners)` writes one by the numbers of its vertices in the image,
/// first, or says that it cannot; `writeCorner(number)` writes the line of one vertex.
template <typename WriteTriangle, typename WriteCorner>
void WriteTrianglesBy(core::TextWriter& writer, const MeshPieces& pieces, const WriteTriangle& writeTriangle,
                      const WriteCorner& writeCorner) {
  for (const MeshPiece& mesh : pieces.Meshes) {
    const smd::MaterialLine material(mesh.Material);
    for (const StripPiece& strip : mesh.Strips) {
      const std::span<const VtxIndex> indices = strip.Indices.Records();
      const std::span<const VtxVertex> vertices = strip.GroupVertices.Records();
      const auto first = static_cast<size_t>(mesh.Vertices.First);
      const auto at = [&](int64_t index) {
        return first + vertices[indices[static_cast<size_t>(index)].Vertex].MeshVertex;
      };
      const auto corner = [&](int64_t k) { return at(TriangleIndex(k)); };
      int64_t k = 0;
      for (; k + 3 <= strip.IndexCount; k += 3) {
        const std::array<size_t, 3> corners = {at(k), at(k + 2), at(k + 1)};  // in the order of TriangleIndex
        if (writeTriangle(material, corners)) continue;
        material.Write(writer);
        for (const size_t number : corners) writeCorner(number);
      }
      if (k < strip.IndexCount) material.Write(writer);
      for (; k < strip.IndexCount; ++k) writeCorner(corner(k));
    }
  }
}

}  // namespace

void WriteTriangles(core::TextWriter& writer, const MeshPieces& pieces, MeshLines& lines) {
  // All meshes share one image, so a place in it stands for a vertex; that it is there was checked with the pieces.
  if (pieces.Meshes.empty()) return;
  const core::RecordArray<VvdVertex>& vertices = pieces.Meshes.front().Vertices.Vertices;
  const bool withLinks = !lines.Form().Unweighted;
  smd::Vertex made;
  if (const smd::LineList* const all = lines.Get()) {
    const core::VectorLevel level = core::HighestVectorLevel();
    const auto writeTriangle = [&](const smd::MaterialLine& material, const std::array<size_t, 3>& corners) {
      return all->WriteTriangle(writer, material, corners, level);
    };
    return WriteTrianglesBy(writer, pieces, writeTriangle, [&](size_t number) {
      if (all->Write(writer, number)) return;
      MakeVertex(*vertices[static_cast<int64_t>(number)], lines.Form(), made);
      smd::WriteVertexLine(writer, made, withLinks);
    });
  }
  smd::VertexLines some(writer, withLinks);
  const auto writeNone = [](const smd::MaterialLine&, const std::array<size_t, 3>&) { return false; };
  WriteTrianglesBy(writer, pieces, writeNone, [&](size_t number) {
    some.Write(number, [&]() -> const smd::Vertex& {
      MakeVertex(*vertices[static_cast<int64_t>(number)], lines.Form(), made);
      return made;
    });
  });
}

}  // namespace tarnwick::decompiler

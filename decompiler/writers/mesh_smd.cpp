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

/// Writes the triangles. `writeTriangles(material, corners)` writes those whose vertices have these numbers in the
/// image, or says how many of them it could before it met one that it cannot; `writeCorner(number)` writes the line of
/// one vertex.
template <typename WriteSome, typename WriteCorner>
void WriteTrianglesBy(core::TextWriter& writer, const MeshPieces& pieces, const WriteSome& writeTriangles,
                      const WriteCorner& writeCorner) {
  constexpr size_t Most = 3 * 64;
  std::array<size_t, Most> corners;
  for (const MeshPiece& mesh : pieces.Meshes) {
    const smd::MaterialLine material(mesh.Material);
    for (const StripPiece& strip : mesh.Strips) {
      const std::span<const VtxIndex> indices = strip.Indices.Records();
      const std::span<const VtxVertex> vertices = strip.GroupVertices.Records();
      const auto first = static_cast<size_t>(mesh.Vertices.First);
      const auto at = [&](size_t index) { return first + vertices[indices[index].Vertex].MeshVertex; };
      const auto writeOne = [&](std::span<const size_t> numbers) {
        material.Write(writer);
        for (const size_t number : numbers) writeCorner(number);
      };
      const auto count = static_cast<size_t>(strip.IndexCount), whole = count - count % 3;
      for (size_t k = 0; k < whole;) {
        const size_t some = std::min(Most, whole - k);
        for (size_t i = 0; i < some; i += 3) {  // in the order of TriangleIndex
          corners[i] = at(k + i);
          corners[i + 1] = at(k + i + 2);
          corners[i + 2] = at(k + i + 1);
        }
        const auto ready = std::span<const size_t>(corners).first(some);
        for (size_t done = 0; done < some;) {
          done += 3 * writeTriangles(material, ready.subspan(done));
          if (done == some) break;
          writeOne(ready.subspan(done, 3));
          done += 3;
        }
        k += some;
      }
      for (size_t k = whole; k < count; ++k) {
        if (k == whole) material.Write(writer);
        writeCorner(at(static_cast<size_t>(TriangleIndex(static_cast<int64_t>(k)))));
      }
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
    const auto writeHeld = [&](const smd::MaterialLine& material, std::span<const size_t> corners) {
      return all->WriteTriangles(writer, material, corners, level);
    };
    return WriteTrianglesBy(writer, pieces, writeHeld, [&](size_t number) {
      if (all->Write(writer, number)) return;
      MakeVertex(*vertices[static_cast<int64_t>(number)], lines.Form(), made);
      smd::WriteVertexLine(writer, made, withLinks);
    });
  }
  smd::VertexLines some(writer, withLinks);
  const auto writeNone = [](const smd::MaterialLine&, std::span<const size_t>) { return size_t{0}; };
  WriteTrianglesBy(writer, pieces, writeNone, [&](size_t number) {
    some.Write(number, [&]() -> const smd::Vertex& {
      MakeVertex(*vertices[static_cast<int64_t>(number)], lines.Form(), made);
      return made;
    });
  });
}

}  // namespace tarnwick::decompiler

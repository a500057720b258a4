#include "decompiler/writers/mesh_smd.h"

#include <algorithm>
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
    smd::Vertex made;
    for (int64_t i = 0; i < m_count; ++i) {
      MakeVertex(*m_vertices[i], m_form, made);
      lines.Add(made, !m_form.Unweighted);
    }
  });
  return m_lines ? &*m_lines : nullptr;
}

namespace {

/// Writes the triangles; `writeCorner(mesh, number)` writes the line of the mesh's vertex of that number.
template <typename WriteCorner>
void WriteTrianglesBy(core::TextWriter& writer, const MeshPieces& pieces, const WriteCorner& writeCorner) {
  for (const MeshPiece& mesh : pieces.Meshes) {
    const smd::MaterialLine material(mesh.Material);
    for (const StripPiece& strip : mesh.Strips) {
      const auto writeNext = [&](int64_t k) {
        writeCorner(mesh, strip.GroupVertices[strip.Indices[TriangleIndex(k)]->Vertex]->MeshVertex);
      };
      int64_t k = 0;
      for (; k + 3 <= strip.IndexCount; k += 3) {
        material.Write(writer);
        for (int64_t corner = 0; corner < 3; ++corner) writeNext(k + corner);
      }
      if (k < strip.IndexCount) material.Write(writer);
      for (; k < strip.IndexCount; ++k) writeNext(k);
    }
  }
}

}  // namespace

void WriteTriangles(core::TextWriter& writer, const MeshPieces& pieces, MeshLines& lines) {
  // All meshes share one image, so a place in it stands for a vertex; that it is there was checked with the pieces.
  const bool withLinks = !lines.Form().Unweighted;
  smd::Vertex made;
  if (const smd::LineList* const all = lines.Get()) {
    return WriteTrianglesBy(writer, pieces, [&](const MeshPiece& mesh, int64_t number) {
      if (all->Write(writer, static_cast<size_t>(mesh.Vertices.First + number))) return;
      MakeVertex(*GetMeshVertex(mesh.Vertices, number), lines.Form(), made);
      smd::WriteVertexLine(writer, made, withLinks);
    });
  }
  smd::VertexLines some(writer, withLinks);
  WriteTrianglesBy(writer, pieces, [&](const MeshPiece& mesh, int64_t number) {
    some.Write(static_cast<uint64_t>(mesh.Vertices.First + number), [&]() -> const smd::Vertex& {
      MakeVertex(*GetMeshVertex(mesh.Vertices, number), lines.Form(), made);
      return made;
    });
  });
}

}  // namespace tarnwick::decompiler

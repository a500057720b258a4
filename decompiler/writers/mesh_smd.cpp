#include "decompiler/writers/mesh_smd.h"

#include <algorithm>
#include <string>

#include "smd/vertex_lines.h"

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

void WriteTriangles(core::TextWriter& writer, const MeshPieces& pieces, const MeshSmdForm& form) {
  smd::VertexLines lines(writer, !form.Unweighted);
  smd::Vertex made;
  for (const MeshPiece& mesh : pieces.Meshes) {
    const smd::MaterialLine material(mesh.Material);
    for (const StripPiece& strip : mesh.Strips) {
      const auto writeCorner = [&](int64_t k) {
        const uint16_t index = strip.Indices[TriangleIndex(k)]->Vertex;
        const int64_t number = strip.GroupVertices[index]->MeshVertex;
        // The meshes share one image, so a place in it stands for a vertex.
        lines.Write(static_cast<uint64_t>(mesh.Vertices.First + number), [&]() -> const smd::Vertex& {
          MakeVertex(*GetMeshVertex(mesh.Vertices, number), form, made);
          return made;
        });
      };
      int64_t k = 0;
      for (; k + 3 <= strip.IndexCount; k += 3) {
        material.Write(writer);
        for (int64_t corner = 0; corner < 3; ++corner) writeCorner(k + corner);
      }
      if (k < strip.IndexCount) material.Write(writer);
      for (; k < strip.IndexCount; ++k) writeCorner(k);
    }
  }
}

}  // namespace tarnwick::decompiler

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

smd::Vertex ToSmdVertex(const VvdVertex& vertex, const MeshSmdForm& form) {
  smd::Vertex result;
  result.Bone = MainBone(vertex);
  result.Position = Turned(vertex.Position, form.TurnedBack);
  result.Normal = Turned(vertex.Normal, form.TurnedBack);
  result.U = vertex.U;
  result.V = (form.VFromOne ? 1.0f : 0.0f) - vertex.V;
  result.LinkCount = WeightCount(vertex);
  for (int i = 0; i < result.LinkCount; ++i) {
    result.Links[static_cast<size_t>(i)] = {vertex.Bones[i], vertex.Weights[i]};
  }
  return result;
}

void WriteTriangles(core::TextWriter& writer, const MeshPieces& pieces, const MeshSmdForm& form) {
  smd::VertexLines lines(writer, !form.Unweighted);
  for (const MeshPiece& mesh : pieces.Meshes) {
    const std::string material = std::string(mesh.Material) + ".tga\n";
    for (const StripPiece& strip : mesh.Strips) {
      for (int64_t k = 0; k < strip.IndexCount; ++k) {
        const uint16_t index = strip.Indices[TriangleIndex(k)]->Vertex;
        const VvdVertex& vertex = *GetMeshVertex(mesh.Vertices, strip.GroupVertices[index]->MeshVertex);
        if (k % 3 == 0) writer.Text(material);
        lines.Write(reinterpret_cast<uintptr_t>(&vertex) / sizeof vertex, [&] { return ToSmdVertex(vertex, form); });
      }
    }
  }
}

}  // namespace tarnwick::decompiler

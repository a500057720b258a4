#include "decompiler/writers/mesh_smd.h"

#include <algorithm>
#include <string>

#include "smd/vertex_lines.h"

namespace tarnwick::decompiler {

namespace {

int WeightCount(const VvdVertex& vertex) {
  return std::min<int>(vertex.WeightCount, 3);
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

smd::Vertex ToSmdVertex(const VvdVertex& vertex) {
  smd::Vertex result;
  result.Bone = MainBone(vertex);
  result.Position = {vertex.Position.x, vertex.Position.y, vertex.Position.z};
  result.Normal = {vertex.Normal.x, vertex.Normal.y, vertex.Normal.z};
  result.U = vertex.U;
  result.V = 0.0f - vertex.V;
  result.LinkCount = WeightCount(vertex);
  for (int i = 0; i < result.LinkCount; ++i) {
    result.Links[static_cast<size_t>(i)] = {vertex.Bones[i], vertex.Weights[i]};
  }
  return result;
}

void WriteTriangles(core::TextWriter& writer, const MeshPieces& pieces, bool unweighted) {
  smd::VertexLines lines(writer, !unweighted);
  for (const MeshPiece& mesh : pieces.Meshes) {
    const std::string material = std::string(mesh.Material) + ".tga\n";
    for (const StripPiece& strip : mesh.Strips) {
      for (int64_t k = 0; k < strip.IndexCount; ++k) {
        const uint16_t index = strip.Indices[TriangleIndex(k)]->Vertex;
        const VvdVertex& vertex = *GetMeshVertex(mesh.Vertices, strip.GroupVertices[index]->MeshVertex);
        if (k % 3 == 0) writer.Text(material);
        lines.Write(reinterpret_cast<uintptr_t>(&vertex) / sizeof vertex, [&] { return ToSmdVertex(vertex); });
      }
    }
  }
}

}  // namespace tarnwick::decompiler

#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "model/vertex_file.h"
#include "model/vtx_records.h"

namespace tarnwick::model {

/// One triangle list of a mesh, checked: every index leads to a vertex.
struct StripPiece {
  core::RecordArray<VtxIndex> Indices;  // from the strip's first index on; see TriangleIndex
  core::RecordArray<VtxVertex> GroupVertices;
  int64_t IndexCount = 0;  // corners
};

/// The triangle lists of one mesh.
struct MeshPiece {
  std::string_view Material;  // the name of its texture
  MeshVertexData Vertices;
  std::vector<StripPiece> Strips;
  int64_t Number = 0;  // of the mesh in its model
};

/// The triangles of one LOD of a model.
struct MeshPieces {
  std::vector<MeshPiece> Meshes;
  bool Complete = true;  // false: the rest could not be had
  int64_t LeftOut = 0;   // triangle strips, which are not read
};

/// The place in its strip of the index of corner `k` of a source file, where each triple goes first, third, second: a
/// model winds its triangles the other way round.
inline int64_t TriangleIndex(int64_t k) {
  return k % 3 == 1 ? k + 1 : k % 3 == 2 ? k - 1 : k;
}

/// Gathers and checks the triangles of one LOD of `model`. Damage is told; what comes before it is kept.
[[nodiscard]] MeshPieces GatherMeshPieces(ModelReader& reader, const core::Record<StudioModel>& model,
                                          const core::Record<VtxModelLod>& lod);

}  // namespace tarnwick::model

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "decompiler/job_context.h"
#include "model/vertex_file.h"

namespace tarnwick::decompiler {

/// One triangle list of a mesh, checked: every index leads to a vertex.
struct StripPiece {
  core::RecordArray<VtxIndex> Indices;  // from the strip's first index on; see TriangleIndex
  core::RecordArray<VtxVertex> GroupVertices;
  int64_t IndexCount = 0;  // lines that the strip prints
};

/// The triangle lists of one mesh.
struct MeshPiece {
  std::string MaterialLine;  // "name.tga\n"
  MeshVertexData Vertices;
  std::vector<StripPiece> Strips;
};

/// What a reference or LOD file holds beside its skeleton.
struct MeshPieces {
  std::vector<MeshPiece> Meshes;
  bool Complete = true;  // false: the rest could not be had, and the stage ends with this file
  int64_t LeftOut = 0;   // triangle strips, which are not exported
};

/// The place in its strip of the index that line number `k` prints: each triple goes first, third, second, since the
/// source form winds its triangles the other way round.
inline int64_t TriangleIndex(int64_t k) {
  return k % 3 == 1 ? k + 1 : k % 3 == 2 ? k - 1 : k;
}

/// Gathers and checks the triangles of one LOD of `model`. Damage is told; what comes before it is kept.
MeshPieces GatherMeshPieces(JobContext& job, const core::Record<StudioModel>& model,
                            const core::Record<VtxModelLod>& lod);

}  // namespace tarnwick::decompiler

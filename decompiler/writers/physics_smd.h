#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "core/text_writer.h"
#include "decompiler/writers/model_names.h"
#include "model/phy_solid.h"

namespace tarnwick::decompiler {

/// A rigid body on its way into a source file.
struct PhysicsMesh {
  int32_t Bone = 0;          // that all of it follows
  std::vector<Vec3> Points;  // where the source file has them, in inches
  std::vector<PhyPiece> Pieces;
};

/// Takes pieces out of `mesh` that repeat an earlier one point by point; gives how many they were.
[[nodiscard]] int64_t RemoveCopies(PhysicsMesh& mesh);

/// Writes the triangles of the pieces, in their order. A compile tells pieces apart by their vertices, which are one
/// where place and normal are the same: so a vertex has one normal throughout its piece, and another than a vertex of
/// any other piece at the same place has.
void WritePhysicsTriangles(core::TextWriter& writer, std::span<const PhysicsMesh> meshes);

}  // namespace tarnwick::decompiler

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "decompiler/job/job_context.h"
#include "model/phy_file.h"
#include "model/phy_values.h"

namespace tarnwick::decompiler::sources {

/// A solid of a physics file and where it belongs.
struct SourceSolid {
  bool IsWritten = false;  // it could be read, and the physics SMD has its pieces
  size_t PieceCount = 0;
  int32_t Bone = 0;
  int32_t Parent = -1;  // the solid of the nearest bone above that has one, as a compile finds it
  PhySolidValues Values;
};

/// What the statements say beside the mesh.
struct Collision {
  bool IsJoined = false;  // a solid for each of several bones, or named after a bone; else one of the whole model
  std::string File;       // the physics SMD
  std::vector<SourceSolid> Solids;
  PhyValues Values;                     // less the solids
  std::optional<Vec3> MassCentre = {};  // of a single solid whose pieces have another, in the source file's space
};

/// Writes `$collisionmodel` or `$collisionjoints`. Statements about joints stand in an order from which the solids come
/// back in theirs. What no statement says is counted as lost.
void WriteCollisionStatement(JobContext& job, const Collision& collision);

/// Writes `$collisiontext` with the blocks that stand apart from all others; nothing if there are none.
void WriteCollisionText(JobContext& job, const std::vector<PhyEntry>& blocks);

}  // namespace tarnwick::decompiler::sources

#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::sources {

/// Writes the physics file of the model, if it has one beside it: the SMD file with the pieces, and the script's
/// `$collisionmodel` or `$collisionjoints` block and `$collisiontext`. A solid that cannot be read costs that solid,
/// and the script says so in a comment. Nothing with DecompileOptionNoPhysics. Gives whether the script has
/// such a block.
bool WritePhysics(JobContext& job);

}  // namespace tarnwick::decompiler::sources

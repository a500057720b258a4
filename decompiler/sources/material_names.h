#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::sources {

/// Finds other names for textures that meshes could not name by their own: a second texture of one name, and one that a
/// mesh file would not give back. The job's `MaterialNames` has them from then on.
void FindMaterialNames(JobContext& job);

/// Writes the statements that give such materials the names of their textures.
void WriteRenamedMaterials(JobContext& job);

}  // namespace tarnwick::decompiler::sources

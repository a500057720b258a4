#include "decompiler/sources/script.h"

#include "decompiler/sources/animation_storage.h"
#include "decompiler/sources/bone_statements.h"
#include "decompiler/sources/header_statements.h"
#include "decompiler/sources/ik_chains.h"
#include "decompiler/sources/key_values.h"
#include "decompiler/sources/material_names.h"
#include "decompiler/sources/meshes.h"
#include "decompiler/sources/physics.h"
#include "decompiler/sources/procedural_bones.h"
#include "decompiler/sources/script_values.h"
#include "decompiler/sources/sequences.h"
#include "decompiler/sources/skin_statements.h"

namespace tarnwick::decompiler::sources {

namespace {

/// A compile asks for a sequence of whatever has a mesh.
void WriteRestSequence(JobContext& job) {
  if (job.FirstMesh.empty()) return;
  job.Script().Text("$sequence \"idle\" " + Quoted(job, job.FirstMesh) + "\n");
}

}  // namespace

void WriteScript(JobContext& job) {
  WriteHeaderStatements(job);
  WriteMaterialFolders(job);
  WriteBoneStatements(job);
  FindMaterialNames(job);
  if (job.Model.Header()->BodyPartCount != 0) WriteModelMeshes(job);
  WriteSkinStatements(job);
  WriteRenamedMaterials(job);
  WritePoseParameterStatements(job);
  WriteAttachmentStatements(job);
  WriteHitboxStatements(job);
  WriteIkStatements(job);
  WriteProceduralBones(job);
  if (job.WithoutAnimations()) {
    WriteRestSequence(job);
  } else {
    WriteStorageStatements(job);
    WriteSequences(job);
  }
  WriteIncludedModels(job);
  const bool hasCollision = WritePhysics(job);
  WriteBoxes(job, hasCollision);
  WriteModelKeyValues(job);
}

}  // namespace tarnwick::decompiler::sources

#include "decompiler/sources/script.h"

#include <algorithm>

#include "decompiler/sources/bone_statements.h"
#include "decompiler/sources/header_statements.h"
#include "decompiler/sources/key_values.h"
#include "decompiler/sources/material_names.h"
#include "decompiler/sources/meshes.h"
#include "decompiler/sources/physics.h"
#include "decompiler/sources/procedural_bones.h"
#include "decompiler/sources/script_values.h"
#include "decompiler/sources/sequences.h"
#include "decompiler/sources/skin_statements.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler::sources {

namespace {

constexpr int32_t UsualSectionFrames = 30;
constexpr int32_t UsualLeastSectioned = 120;

/// $animblocksize, where the model has a block file, and $sectionframes, where its animations are not cut as usual.
void WriteStorage(JobContext& job) {
  const auto header = job.Model.Header();
  if (header->AnimBlockCount > 1) {
    constexpr int64_t KiloByte = 1024, Least = 4, Most = 64;
    const auto blocks =
        job.Table<StudioAnimBlock>("animation block table", header->AnimBlockOffset, header->AnimBlockCount);
    int64_t largest = 0;
    for (int64_t i = 1; blocks && i < blocks->Count(); ++i) {
      largest = std::max(largest, int64_t{(*blocks)[i]->End} - (*blocks)[i]->Start);
    }
    // A block is filled as far as its size allows; sizes are powers of two.
    int64_t size = Least;
    while (size < Most && size * KiloByte < largest) size *= 2;
    job.Script().Text("$animblocksize " + std::to_string(size) + "\n");
  }
  const auto animations = job.Model.View().Array<StudioAnimDesc>(header->AnimOffset, header->AnimCount);
  if (!animations) return;
  int32_t length = 0, least = 0;
  for (const auto animation : *animations) {
    if (animation->SectionFrames <= 0) continue;
    if (least == 0 || animation->FrameCount < least) least = animation->FrameCount;
    length = animation->SectionFrames;
  }
  if (length == 0 || (length == UsualSectionFrames && least >= UsualLeastSectioned)) return;
  job.Script().Text("$sectionframes " + std::to_string(length) + " " + std::to_string(least) + "\n");
}

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
    WriteStorage(job);
    WriteSequences(job);
  }
  WriteIncludedModels(job);
  const bool hasCollision = WritePhysics(job);
  WriteBoxes(job, hasCollision);
  WriteModelKeyValues(job);
}

}  // namespace tarnwick::decompiler::sources

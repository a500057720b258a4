#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::sources {

/// $definebone for every bone in order, $bonemerge, $jointsurfaceprop, $jointcontents. None for a static model, whose
/// one bone the compiler makes.
void WriteBoneStatements(JobContext& job);
/// $poseparameter.
void WritePoseParameterStatements(JobContext& job);
/// $attachment, whose angles give the matrix back.
void WriteAttachmentStatements(JobContext& job);
/// $hboxset and $hbox; none where the boxes were made from the vertices, as a compile makes them again.
void WriteHitboxStatements(JobContext& job);

}  // namespace tarnwick::decompiler::sources

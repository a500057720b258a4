#pragma once

#include "decompiler/job/job_context.h"

namespace tarnwick::decompiler::plain {

// Statements of the script, a function a kind. A damaged table costs the statements made from it, and is told.

void WritePoseParameters(JobContext& job);       // $poseparameter
void WriteMaterialDirectories(JobContext& job);  // $cdmaterials
void WriteSkinFamilies(JobContext& job);         // $texturegroup
void WriteHitboxes(JobContext& job);             // $hboxset, $hbox
void WriteAttachments(JobContext& job);          // $attachment
void WriteIncludeModels(JobContext& job);        // $includemodel
void WriteSurfaceProp(JobContext& job);          // $surfaceprop
void WriteKeyValues(JobContext& job);            // $keyvalues
void WritePositions(JobContext& job);            // $eyeposition, $illumposition
void WriteIkChains(JobContext& job);             // $ikchain

}  // namespace tarnwick::decompiler::plain

#pragma once

#include <cstdint>

#include "decompiler/plain/flex_tables.h"
#include "model/face_records.h"

namespace tarnwick::decompiler::plain {

/// Writes the commands of a model's face into its open `$model` block, and its VTA file: the three operations below,
/// in their order.
void WriteFace(JobContext& job, const core::Record<StudioModel>& model);

/// Fills the tables, writes the `flexfile` block and the VTA file. The number of its frames behind the first; 0 if it
/// could not be completed.
int32_t WriteFlexFile(JobContext& job, const core::Record<StudioModel>& model, FlexTables& tables);

/// Writes the `eyeball`, `eyelid` and `mouth` commands. The first eyeball is the right one, all others are left.
void WriteEyesAndMouths(JobContext& job, const core::Record<StudioModel>& model, const FlexTables& tables);

/// Writes the `flexcontroller`, `localvar` and rule lines.
void WriteFlexControllers(JobContext& job, const FlexTables& tables);

}  // namespace tarnwick::decompiler::plain

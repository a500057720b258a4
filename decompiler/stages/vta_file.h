#pragma once

#include "decompiler/stages/flex_tables.h"
#include "model/model_flexes.h"

namespace tarnwick::decompiler {

/// Writes the VTA file `tables.VtaName`: `frameCount` + 1 skeleton frames at rest, the model's vertices as frame 0, and
/// a frame of changed vertices for each descriptor that has one. False if the file could not be completed (told, or
/// logged as a missing file of vertices is).
[[nodiscard]] bool WriteVtaFile(JobContext& job, const core::Record<StudioModel>& model, const ModelFlexes& flexes,
                                const FlexTables& tables, int32_t frameCount);

}  // namespace tarnwick::decompiler

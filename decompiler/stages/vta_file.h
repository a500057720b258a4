#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "decompiler/job/job_context.h"
#include "model/model_flexes.h"

namespace tarnwick::decompiler {

/// A shape of the face on its way into a VTA file: the changes that flexes have, one a mesh.
struct VtaFrame {
  int32_t Number = 0;  // from 1 on
  std::string_view Name;
  std::vector<MeshFlex> Flexes;
};

/// Writes the VTA file `name`: `frameCount` + 1 skeleton frames at rest, the model's vertices as frame 0, and `frames`
/// with the vertices that change. False if the file could not be completed (told, or logged as a missing file of
/// vertices is).
[[nodiscard]] bool WriteVtaFile(JobContext& job, const core::Record<StudioModel>& model, const ModelFlexes& flexes,
                                const std::string& name, const std::vector<VtaFrame>& frames, int32_t frameCount);

}  // namespace tarnwick::decompiler

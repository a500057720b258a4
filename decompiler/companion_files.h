#pragma once

#include <optional>
#include <span>
#include <string>

#include "decompiler/job_context.h"

namespace tarnwick::decompiler {

/// The first of `paths` that exists; where none does, the first that exists under a name that differs in the case of
/// letters only, if just one file is such (models come from a system that does not tell case apart; a log line says
/// which file was taken). Nothing if there is none; then the log lists what was sought and where.
std::optional<std::string> FindCompanion(JobContext& job, std::span<const std::string> paths);

/// The .vtx file of the model at `modelPath`, sought as .dx80.vtx, .vtx, .dx90.vtx and .sw.vtx in the place of the
/// last four characters of the path.
std::optional<std::string> FindVtxFile(JobContext& job, const std::string& modelPath);

/// Warns if the file at `path` was made together with another model: its `checksum` is not that of the job's model.
void CheckChecksum(JobContext& job, const std::string& path, int32_t checksum);

}  // namespace tarnwick::decompiler

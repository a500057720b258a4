#pragma once

#include <optional>
#include <span>
#include <string>

#include "model/model_reader.h"

namespace tarnwick::model {

/// The first of `paths` that exists; where none does, the first that exists under a name that differs in the case of
/// letters only, if just one file is such (models come from a system that does not tell case apart; a log line says
/// which file was taken). Nothing if there is none; then the log lists what was sought and where.
[[nodiscard]] std::optional<std::string> FindCompanion(ModelReader& reader, std::span<const std::string> paths);

/// The .vtx file of the model at `modelPath`, sought as .dx80.vtx, .vtx, .dx90.vtx and .sw.vtx in the place of the
/// last four characters of the path.
[[nodiscard]] std::optional<std::string> FindVtxFile(ModelReader& reader, const std::string& modelPath);

/// A file that was found, and read if it can be.
struct FoundFile {
  std::string Path;
  std::optional<core::FileImage> File;
};

/// Among those four files the first that was made together with the model, as its checksum tells; the first that is
/// there if none was. Nothing if there is none; `reason` tells why the one that was found cannot be read.
[[nodiscard]] std::optional<FoundFile> ReadMatchingVtxFile(ModelReader& reader, const std::string& modelPath,
                                                           std::string& reason);

/// Warns if the file at `path` was made together with another model: its `checksum` is not that of the reader's model.
void CheckChecksum(ModelReader& reader, const std::string& path, int32_t checksum);

}  // namespace tarnwick::model

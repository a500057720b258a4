#pragma once

#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include "archives/archive.h"
#include "core/trouble.h"

namespace tarnwick::archives {

/// The files of an archive that any of the patterns means (`MatchesPattern`; all if there is none), sorted by name.
std::vector<uint32_t> ChooseFiles(const Archive& archive, const std::vector<std::string>& patterns);

/// A file that was taken out of an archive.
struct ExtractedFile {
  std::string Name;  // in the archive
  std::string Path;  // on the disk
  uint64_t Size = 0;
};

/// What became of an extraction.
struct Extraction {
  std::vector<ExtractedFile> Files;
  size_t Failed = 0;  // files that could not be taken out, each told to the sink
  bool Stopped = false;
};

/// Called before each file with its name and how many are done.
using ExtractionProgress = std::function<void(const std::string& name, size_t done)>;

/// Writes files of an archive below `outputDirectory`, their folders kept. Each appears whole, its CRC-32 checked, or
/// not at all; an older file gives way to it. Nothing is written outside the folder, neither by a name (`UnsafeReason`)
/// nor through a link that lies in it. A later file of a name that differs in case only is left out and told. Files are
/// read in the order of the archive, which a packed one needs. A stop is honoured within a file too, which is then not
/// written.
Extraction ExtractFiles(const Archive& archive, const std::vector<uint32_t>& files, const std::string& outputDirectory,
                        core::TroubleSink& sink, const std::stop_token& stop, const ExtractionProgress& progress);

}  // namespace tarnwick::archives

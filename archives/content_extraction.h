#pragma once

#include <stop_token>
#include <string>
#include <vector>

#include "archives/content_index.h"
#include "archives/extraction.h"
#include "core/trouble.h"

namespace tarnwick::archives {

/// Writes files of an index below `outputDirectory`, their folders kept, as `ExtractFiles` does; those of a folder on
/// the disk are copied under the same rules. The result's files stand in the order in which they were written.
Extraction ExtractContent(const ContentIndex& index, const std::vector<uint32_t>& files,
                          const std::string& outputDirectory, core::TroubleSink& sink, const std::stop_token& stop,
                          const ExtractionProgress& progress);

/// How many of the files an extraction to that folder would replace.
size_t CountExisting(const ContentIndex& index, const std::vector<uint32_t>& files, const std::string& outputDirectory);

}  // namespace tarnwick::archives

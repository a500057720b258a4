#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "archives/archive.h"

namespace tarnwick::archives {

/// Files of one kind or in one place of an archive.
struct FileGroup {
  std::string Name;  // an extension in small letters with its dot, "" for none; or a part's path
  uint64_t Files = 0;
  uint64_t Bytes = 0;  // of the files; of a part those of them that lie there
};

struct ArchivePart : FileGroup {
  bool Exists = true;
  uint64_t Size = 0;  // on the disk
};

/// The figures of an archive.
struct ArchiveSummary {
  uint64_t Files = 0;
  uint64_t Bytes = 0;
  uint64_t Folders = 0;               // that files lie in
  uint64_t SameNames = 0;             // files whose name an earlier one has already
  uint64_t UnsafeNames = 0;           // files that are not extracted for their names
  std::vector<FileGroup> Extensions;  // the most bytes first
  std::vector<ArchivePart> Parts;     // of a VPK that has bytes elsewhere: the directory file, then by number
};

ArchiveSummary Summarize(const Archive& archive);

}  // namespace tarnwick::archives

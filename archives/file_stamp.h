#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace tarnwick::archives {

/// By what a file on the disk is known to be the one that was seen before.
struct FileStamp {
  bool Exists = false;
  uint64_t Size = 0;
  int64_t Written = 0;  // core::WriteTime
  bool operator==(const FileStamp&) const = default;
};

/// The stamp of the file at `path`; of a folder, or where there is none, that of nothing.
FileStamp StampOf(const std::filesystem::path& path);

}  // namespace tarnwick::archives

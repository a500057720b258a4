#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "archives/byte_source.h"
#include "archives/file_stamp.h"

namespace tarnwick::archives {

/// A file on the disk that is read at any place, by several threads at once. It is read, not mapped into memory: a
/// mapped file that shrinks, or whose disk fails, ends the program by a signal, and what was checked could change
/// under the one who walks it.
class RandomFile : public ByteSource {
 public:
  /// Opens the file at `path` (either slash is taken). Null if it cannot be opened or is no regular file; then `reason`
  /// tells why in the system's words.
  static std::unique_ptr<RandomFile> Open(const std::string& path, std::string& reason);

  RandomFile(const RandomFile&) = delete;
  RandomFile& operator=(const RandomFile&) = delete;
  ~RandomFile() override;

  std::optional<size_t> Read(uint64_t offset, std::span<std::byte> out, std::string& reason) const override;
  /// Bytes that the file had when it was opened.
  std::optional<uint64_t> Size() const override { return m_size; }
  bool HasChanged() const override;

 private:
  RandomFile() = default;

#ifdef _WIN32
  void* m_handle = nullptr;
#else
  int m_descriptor = -1;
#endif
  uint64_t m_size = 0;
  std::filesystem::path m_path;
  FileStamp m_stamp;
};

}  // namespace tarnwick::archives

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#ifdef _WIN32
#include <fstream>
#endif

namespace tarnwick::core {

/// A regular file that is open for reading, from its start on. Nothing that only looks like a file (a pipe, a device)
/// is ever waited for.
class ReadableFile {
 public:
  /// Opens the file at `path` (either slash is taken). Nothing if it cannot be opened or is no regular file; then
  /// `reason`, if given, tells why in the system's words.
  [[nodiscard]] static std::optional<ReadableFile> Open(const std::string& path, std::string* reason = nullptr);

  ReadableFile(ReadableFile&& other) noexcept;
  ReadableFile& operator=(ReadableFile&&) = delete;
  ~ReadableFile();

  /// Bytes that the file had when it was opened.
  uint64_t Size() const { return m_size; }
  /// Reads on until `out` is full or the file ends, and gives how many bytes that were. Nothing if it cannot be read.
  [[nodiscard]] std::optional<size_t> Read(std::span<std::byte> out);

 private:
  ReadableFile() = default;

#ifdef _WIN32
  std::ifstream m_file;
#else
  int m_descriptor = -1;
#endif
  uint64_t m_size = 0;
};

}  // namespace tarnwick::core

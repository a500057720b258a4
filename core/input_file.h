#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::core {

/// A file read from its start to its end in large pieces, so that its size does not matter.
///
///     for (std::string_view bytes = file.Read(); !bytes.empty(); bytes = file.Read()) ...
///     if (!file.Error().empty()) ...
class InputFile {
 public:
  /// Opens the file at `path` (either slash is taken). Nothing if it cannot be opened or is no regular file; then
  /// `reason`, if given, tells why in the system's words.
  [[nodiscard]] static std::optional<InputFile> Open(const std::string& path, std::string* reason = nullptr);

  /// The next bytes, good until the next call; empty at the end of the file and after a failure.
  std::string_view Read();

  /// Why a read failed; empty if none did.
  const std::string& Error() const { return m_error; }
  /// Bytes that the file had when it was opened.
  uint64_t Size() const { return m_size; }

 private:
  static constexpr size_t PieceSize = size_t{1} << 18;

  std::ifstream m_file;
  std::unique_ptr<char[]> m_piece;
  std::string m_error;
  uint64_t m_size = 0;
};

}  // namespace tarnwick::core

#include "core/input_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "core/paths.h"

namespace tarnwick::core {

namespace fs = std::filesystem;

std::optional<InputFile> InputFile::Open(const std::string& path, std::string* reason) {
  const auto refuse = [&](std::string_view why) {
    if (reason != nullptr) *reason = why;
    return std::nullopt;
  };
  const fs::path native = NativePath(path);
  std::error_code error;
  const fs::file_status status = fs::status(native, error);
  if (error) return refuse(error.message());
  if (!fs::is_regular_file(status))
    return refuse(fs::is_directory(status) ? "it is a folder" : "it is no regular file");
  const uint64_t size = fs::file_size(native, error);
  if (error) return refuse(error.message());

  InputFile file;
  file.m_size = size;
  file.m_file.rdbuf()->pubsetbuf(nullptr, 0);  // the pieces are large enough
  errno = 0;
  file.m_file.open(native, std::ios::binary);
  if (!file.m_file) return refuse(std::strerror(errno));
  file.m_piece = std::make_unique_for_overwrite<char[]>(PieceSize);
  return file;
}

std::string_view InputFile::Read() {
  if (!m_file) return {};
  errno = 0;
  m_file.read(m_piece.get(), static_cast<std::streamsize>(PieceSize));
  if (m_file.bad()) {
    m_error = errno != 0 ? std::strerror(errno) : "it could not be read";
    return {};
  }
  return {m_piece.get(), static_cast<size_t>(m_file.gcount())};
}

}  // namespace tarnwick::core

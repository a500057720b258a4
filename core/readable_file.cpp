#include "core/readable_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <utility>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "core/paths.h"

namespace tarnwick::core {

namespace fs = std::filesystem;

namespace {

void Explain(std::string* reason, std::string_view text) {
  if (reason != nullptr) *reason = text;
}

/// Why what stands at `native` is not opened whatever rights there are; "" for a regular file.
std::string KindTrouble(const fs::path& native) {
  std::error_code error;
  const fs::file_status status = fs::status(native, error);
  if (error) return error.message();
  if (fs::is_regular_file(status)) return "";
  return fs::is_directory(status) ? "it is a folder" : "it is not a regular file";
}

}  // namespace

#ifdef _WIN32

std::optional<ReadableFile> ReadableFile::Open(const std::string& path, std::string* reason) {
  const fs::path native = NativePath(path);
  if (const std::string trouble = KindTrouble(native); !trouble.empty()) {
    Explain(reason, trouble);
    return std::nullopt;
  }
  errno = 0;
  ReadableFile file;
  file.m_file.open(native, std::ios::binary);
  std::error_code error;
  if (file.m_file) file.m_size = fs::file_size(native, error);
  if (!file.m_file || error) {
    Explain(reason, error ? error.message() : std::string(std::strerror(errno)));
    return std::nullopt;
  }
  return file;
}

ReadableFile::ReadableFile(ReadableFile&& other) noexcept = default;
ReadableFile::~ReadableFile() = default;

std::optional<size_t> ReadableFile::Read(std::span<std::byte> out) {
  m_file.read(reinterpret_cast<char*>(out.data()), static_cast<std::streamsize>(out.size()));
  if (m_file.bad()) return std::nullopt;
  return static_cast<size_t>(m_file.gcount());
}

#else

std::optional<ReadableFile> ReadableFile::Open(const std::string& path, std::string* reason) {
  std::string native = path;
  std::replace(native.begin(), native.end(), '\\', '/');
  ReadableFile file;
  // Without waiting: nobody may ever write to a pipe. What it is, is asked of what is open.
  file.m_descriptor = open(native.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  const int cause = errno;
  struct stat status {};
  if (file.m_descriptor >= 0 && fstat(file.m_descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
    file.m_size = static_cast<uint64_t>(status.st_size);
    return file;
  }
  const std::string trouble = KindTrouble(native);
  Explain(reason, trouble.empty() ? std::strerror(cause) : trouble);
  return std::nullopt;
}

ReadableFile::ReadableFile(ReadableFile&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)), m_size(other.m_size) {}

ReadableFile::~ReadableFile() {
  if (m_descriptor >= 0) close(m_descriptor);
}

std::optional<size_t> ReadableFile::Read(std::span<std::byte> out) {
  size_t done = 0;
  while (done < out.size()) {
    const ssize_t count = read(m_descriptor, out.data() + done, out.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    done += static_cast<size_t>(count);
  }
  return done;
}

#endif

}  // namespace tarnwick::core

#include "archives/random_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "core/paths.h"

namespace tarnwick::archives {

namespace {

constexpr size_t LargestRead = size_t{1} << 30;  // what one call of either system takes

}  // namespace

#ifdef _WIN32

namespace {

std::string SystemReason() {
  return std::system_category().message(static_cast<int>(GetLastError()));
}

}  // namespace

std::unique_ptr<RandomFile> RandomFile::Open(const std::string& path, std::string& reason) {
  std::unique_ptr<RandomFile> file(new RandomFile);
  file->m_path = core::NativePath(path);
  file->m_stamp = StampOf(file->m_path);  // before the bytes: what is written meanwhile counts as a change
  const HANDLE handle =
      CreateFileW(file->m_path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    reason = SystemReason();
    return nullptr;
  }
  file->m_handle = handle;
  LARGE_INTEGER size;
  if (GetFileType(handle) != FILE_TYPE_DISK || !GetFileSizeEx(handle, &size)) {
    reason = "it is no regular file";
    return nullptr;
  }
  file->m_size = static_cast<uint64_t>(size.QuadPart);
  return file;
}

RandomFile::~RandomFile() {
  if (m_handle != nullptr) CloseHandle(m_handle);
}

std::optional<size_t> RandomFile::Read(uint64_t offset, std::span<std::byte> out, std::string& reason) const {
  size_t done = 0;
  while (done < out.size()) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>((offset + done) & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>((offset + done) >> 32);
    DWORD got = 0;
    if (!ReadFile(m_handle, out.data() + done, static_cast<DWORD>(std::min(out.size() - done, LargestRead)), &got,
                  &place)) {
      if (GetLastError() == ERROR_HANDLE_EOF) break;
      reason = SystemReason();
      return std::nullopt;
    }
    if (got == 0) break;
    done += got;
  }
  return done;
}

#else

std::unique_ptr<RandomFile> RandomFile::Open(const std::string& path, std::string& reason) {
  std::unique_ptr<RandomFile> file(new RandomFile);
  file->m_path = core::NativePath(path);
  file->m_stamp = StampOf(file->m_path);  // before the bytes: what is written meanwhile counts as a change
  // A pipe that nobody writes to must not stop the program here.
  file->m_descriptor = open(file->m_path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat status {};
  if (file->m_descriptor < 0 || fstat(file->m_descriptor, &status) != 0) {
    reason = std::strerror(errno);
    return nullptr;
  }
  if (!S_ISREG(status.st_mode)) {
    reason = S_ISDIR(status.st_mode) ? "it is a folder" : "it is no regular file";
    return nullptr;
  }
  file->m_size = static_cast<uint64_t>(status.st_size);
  return file;
}

RandomFile::~RandomFile() {
  if (m_descriptor >= 0) close(m_descriptor);
}

std::optional<size_t> RandomFile::Read(uint64_t offset, std::span<std::byte> out, std::string& reason) const {
  if (offset >= m_size) return 0;
  size_t done = 0;
  while (done < out.size()) {
    const ssize_t got = pread(m_descriptor, out.data() + done, std::min(out.size() - done, LargestRead),
                              static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      reason = std::strerror(errno);
      return std::nullopt;
    }
    if (got == 0) break;
    done += static_cast<size_t>(got);
  }
  return done;
}

#endif

bool RandomFile::HasChanged() const {
  return StampOf(m_path) != m_stamp;
}

}  // namespace tarnwick::archives

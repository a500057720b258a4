#include "core/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <utility>

#ifdef _WIN32
#include <io.h>
#include <process.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

#include "core/paths.h"
#include "core/whole_path.h"
#ifdef _WIN32
#include "core/windows_names.h"
#endif

namespace tarnwick::core {

namespace fs = std::filesystem;

namespace {

#ifdef _WIN32
int OpenNew(const fs::path& path) {
  return _wopen(path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY, _S_IREAD | _S_IWRITE);
}
int64_t WriteSome(int descriptor, const char* data, size_t size) {
  return _write(descriptor, data, static_cast<unsigned>(size < 1 << 20 ? size : 1 << 20));
}
int CloseDescriptor(int descriptor) {
  return _close(descriptor);
}
bool Replace(const fs::path& from, const fs::path& to, std::string& reason) {
  if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
  reason = std::error_code(static_cast<int>(GetLastError()), std::system_category()).message();
  return false;
}
bool MayBeWritten(const fs::path& path) {
  return _waccess(path.c_str(), 2) == 0;
}
int ProcessNumber() {
  return _getpid();
}
#else
int OpenNew(const fs::path& path) {
  return open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
}
int64_t WriteSome(int descriptor, const char* data, size_t size) {
  return write(descriptor, data, size);
}
int CloseDescriptor(int descriptor) {
  return close(descriptor);
}
bool Replace(const fs::path& from, const fs::path& to, std::string& reason) {
  if (rename(from.c_str(), to.c_str()) == 0) return true;
  reason = std::strerror(errno);
  return false;
}
bool MayBeWritten(const fs::path& path) {
  return access(path.c_str(), W_OK) == 0;
}
int ProcessNumber() {
  return getpid();
}
#endif

/// A name beside `path` that no other file of this or another process uses. It does not grow with the name of the
/// file, so a name of the greatest length that the file system takes still works.
fs::path TemporaryName(const fs::path& path) {
  static std::atomic<uint32_t> counter{0};
  const std::string name =
      ".tarnwick-" + std::to_string(ProcessNumber()) + "-" + std::to_string(counter.fetch_add(1)) + ".tmp";
#ifdef _WIN32
  return fs::path(path).replace_filename(name);
#else  // put together as texts, which is quicker than to take apart and to put together paths
  return path.native().substr(0, path.native().rfind('/') + 1) + name;
#endif
}

}  // namespace

std::optional<OutputFile> OutputFile::Create(std::string path, std::string* reason) {
  const auto refuse = [&](std::string_view why) {
    if (reason != nullptr) *reason = why;
    return std::nullopt;
  };
  if (LastComponent(path).empty()) return refuse("the file has no name");
#ifdef _WIN32  // the system would write to a device, to a stream of another file, or under another name
  if (const std::string trouble = WindowsNameTrouble(LastComponent(path)); !trouble.empty()) return refuse(trouble);
#endif
  fs::path native = NativePath(path);
  std::error_code error;
  auto status = fs::symlink_status(native, error);
  if (fs::is_symlink(status)) {
    status = fs::status(native, error);
    std::error_code dangling;
    const fs::path target = RealPath(native, dangling);
    if (!dangling) native = NativePath(PathText(target));
  }
  if (fs::is_directory(status)) return refuse("a folder of that name exists");
  if (fs::exists(status) && !MayBeWritten(native)) return refuse(std::strerror(errno));
  // A name that is too long or otherwise impossible must fail here, not when the finished file is to get it.
  if (error && !fs::exists(status) && status.type() != fs::file_type::not_found) return refuse(error.message());

  OutputFile file;
  for (int attempt = 0; attempt < 100 && file.m_descriptor < 0; ++attempt) {
    file.m_temporaryPath = TemporaryName(native);
    file.m_descriptor = OpenNew(file.m_temporaryPath);
    if (file.m_descriptor < 0 && errno != EEXIST) break;
  }
  if (file.m_descriptor < 0) {
    const int cause = errno;
    if (cause != EACCES && cause != EPERM && cause != EROFS) return refuse(std::strerror(cause));
    // The file itself may be writable, but a new one is to take its place.
    const std::string folder = native.has_parent_path() ? PathText(native.parent_path()) : ".";
    return refuse("the folder " + folder + " cannot be written to: " + std::strerror(cause));
  }
  if (fs::exists(status)) fs::permissions(file.m_temporaryPath, status.permissions(), error);
  file.m_target = std::move(native);
  file.m_path = std::move(path);
  return file;
}

OutputFile::OutputFile(std::string path, std::unique_ptr<OutputTarget> target)
    : m_path(std::move(path)), m_held(std::move(target)) {}

OutputFile::OutputFile(OutputFile&& other) noexcept {
  *this = std::move(other);
}

OutputFile& OutputFile::operator=(OutputFile&& other) noexcept {
  if (this == &other) return *this;
  Discard();
  m_path = std::move(other.m_path);
  m_target = std::move(other.m_target);
  m_temporaryPath = std::exchange(other.m_temporaryPath, {});
  m_held = std::move(other.m_held);
  m_error = std::move(other.m_error);
  m_size = other.m_size;
  m_descriptor = std::exchange(other.m_descriptor, -1);
  return *this;
}

OutputFile::~OutputFile() {
  Discard();
}

bool OutputFile::Fail(std::string reason) {
  if (m_error.empty()) m_error = std::move(reason);
  return false;
}

bool OutputFile::Write(std::string_view bytes) {
  if (!m_error.empty()) return false;
  if (m_held != nullptr) {
    std::string reason;
    if (!m_held->Write(bytes, reason)) return Fail(std::move(reason));
    m_size += bytes.size();
    return true;
  }
  if (m_descriptor < 0) return Fail("the file is closed");
  while (!bytes.empty()) {
    const int64_t written = WriteSome(m_descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return Fail(written < 0 ? std::strerror(errno) : "nothing more can be written");
    bytes.remove_prefix(static_cast<size_t>(written));
    m_size += static_cast<uint64_t>(written);
  }
  return true;
}

bool OutputFile::Commit() {
  if (m_held != nullptr) {
    std::string reason;
    if (m_error.empty() && !m_held->Commit(reason)) Fail(std::move(reason));
    m_held.reset();
    return m_error.empty();
  }
  if (m_descriptor < 0) return Fail("the file is closed");
  const int closed = CloseDescriptor(std::exchange(m_descriptor, -1));
  if (closed != 0) Fail(std::strerror(errno));
  std::string reason;
  if (m_error.empty() && !Replace(m_temporaryPath, m_target, reason)) Fail(reason);
  if (!m_error.empty()) {
    Discard();
    return false;
  }
  m_temporaryPath.clear();
  return true;
}

void OutputFile::Discard() {
  m_held.reset();
  if (m_descriptor >= 0) CloseDescriptor(std::exchange(m_descriptor, -1));
  if (m_temporaryPath.empty()) return;
  std::error_code ignored;
  fs::remove(m_temporaryPath, ignored);
  m_temporaryPath.clear();
}

}  // namespace tarnwick::core

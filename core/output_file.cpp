#include "core/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
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

using NativeText = fs::path::string_type;

#ifdef _WIN32
NativeText NativeTextOf(std::string_view path) {
  return NativePath(path).native();
}
bool IsKnownToBeFree(const NativeText&) {
  return false;
}
int OpenNew(const NativeText& path) {
  return _wopen(path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY, _S_IREAD | _S_IWRITE);
}
int64_t WriteSome(int descriptor, const char* data, size_t size) {
  return _write(descriptor, data, static_cast<unsigned>(size < 1 << 20 ? size : 1 << 20));
}
int CloseDescriptor(int descriptor) {
  return _close(descriptor);
}
bool Replace(const NativeText& from, const NativeText& to, std::string& reason) {
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
NativeText NativeTextOf(std::string_view path) {
  NativeText native(path);
  std::replace(native.begin(), native.end(), '\\', '/');
  return native;
}
/// Whether nothing stands there, and something could.
bool IsKnownToBeFree(const NativeText& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) != 0 && errno == ENOENT;
}
int OpenNew(const NativeText& path) {
  return open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
}
int64_t WriteSome(int descriptor, const char* data, size_t size) {
  return write(descriptor, data, size);
}
int CloseDescriptor(int descriptor) {
  return close(descriptor);
}
bool Replace(const NativeText& from, const NativeText& to, std::string& reason) {
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

/// What is found where a file is to be made.
struct Place {
  NativeText Target;  // behind a link
  fs::file_status Older{fs::file_type::not_found};
  std::string Trouble;  // why no file can be made there
};

Place FindPlace(std::string_view path) {
  Place place;
  place.Target = NativeTextOf(path);
  if (IsKnownToBeFree(place.Target)) return place;
  fs::path native = place.Target;
  std::error_code error;
  auto status = fs::symlink_status(native, error);
  if (fs::is_symlink(status)) {
    status = fs::status(native, error);
    std::error_code dangling;
    const fs::path target = RealPath(native, dangling);
    if (!dangling) native = NativePath(PathText(target));
  }
  place.Older = status;
  place.Target = native.native();
  if (fs::is_directory(status)) {
    place.Trouble = "a folder of that name exists";
  } else if (fs::exists(status) && !MayBeWritten(native)) {
    place.Trouble = std::strerror(errno);
  } else if (error && !fs::exists(status) && status.type() != fs::file_type::not_found) {
    // A name that is too long or otherwise impossible must fail here, not when the finished file is to get it.
    place.Trouble = error.message();
  }
  return place;
}

/// Why no file can have the name; empty if one can.
std::string NameTrouble(std::string_view path) {
  const std::string_view name = LastComponent(path);
  if (name.empty()) return "the file has no name";
#ifdef _WIN32  // the system would write to a device, to a stream of another file, or under another name
  return WindowsNameTrouble(name);
#else
  return "";
#endif
}

}  // namespace

/// It does not grow with the name of the file, so a name of the greatest length that the file system takes still works.
NativeText TemporaryName(const NativeText& path) {
  static std::atomic<uint32_t> counter{0};
  static const std::string start = ".tarnwick-" + std::to_string(ProcessNumber()) + "-";
  const std::string name = start + std::to_string(counter.fetch_add(1)) + ".tmp";
#ifdef _WIN32
  return fs::path(path).replace_filename(name).native();
#else
  return path.substr(0, path.rfind('/') + 1).append(name);
#endif
}

std::optional<OutputFile> OutputFile::Create(std::string path, std::string* reason) {
  const auto refuse = [&](std::string_view why) {
    if (reason != nullptr) *reason = why;
    return std::nullopt;
  };
  if (const std::string trouble = NameTrouble(path); !trouble.empty()) return refuse(trouble);
  Place place = FindPlace(path);
  if (!place.Trouble.empty()) return refuse(place.Trouble);

  OutputFile file;
  for (int attempt = 0; attempt < 100 && file.m_descriptor < 0; ++attempt) {
    file.m_temporaryPath = TemporaryName(place.Target);
    file.m_descriptor = OpenNew(file.m_temporaryPath);
    if (file.m_descriptor < 0 && errno != EEXIST) break;
  }
  if (file.m_descriptor < 0) {
    const int cause = errno;
    if (cause != EACCES && cause != EPERM && cause != EROFS) return refuse(std::strerror(cause));
    // The file itself may be writable, but a new one is to take its place.
    const fs::path native = place.Target;
    const std::string folder = native.has_parent_path() ? PathText(native.parent_path()) : ".";
    return refuse("the folder " + folder + " cannot be written to: " + std::strerror(cause));
  }
  std::error_code ignored;
  if (fs::exists(place.Older)) fs::permissions(file.m_temporaryPath, place.Older.permissions(), ignored);
  file.m_target = std::move(place.Target);
  file.m_path = std::move(path);
  return file;
}

std::optional<OutputFile> OutputFile::CreateApart(std::string path, std::string place, std::string* reason) {
  OutputFile file;
  if (NameTrouble(place).empty()) {
    file.m_temporaryPath = NativeTextOf(place);
    file.m_descriptor = OpenNew(file.m_temporaryPath);
  }
  if (file.m_descriptor < 0) {
    file.m_temporaryPath.clear();  // another's, if any is there
    auto replacing = Create(std::move(place), reason);
    if (!replacing) return std::nullopt;
    file = std::move(*replacing);
  }
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
  if (m_error.empty() && !m_target.empty() && !Replace(m_temporaryPath, m_target, reason)) Fail(reason);
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

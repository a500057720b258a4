#include "images/worker/image_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "core/paths.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace tarnwick::images {

namespace {

// The buffer is set by hand, since choosing one asks the system about the file, which the jail forbids.
constexpr size_t BufferSize = size_t{1} << 16;

#ifdef _WIN32
FILE* Open(const std::string& path, bool write) {
  const std::filesystem::path native = core::NativePath(path);
  std::error_code error;
  const auto status = std::filesystem::status(native, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    errno = std::filesystem::is_directory(status) ? EISDIR : EINVAL;
    return nullptr;
  }
  return _wfopen(native.c_str(), write ? L"w+b" : L"rb");
}
#else
/// Some writers read again what they have written, so an output can be read too. Opens without ever waiting: a pipe or
/// a device in the file's place is refused. Sets errno on failure.
FILE* Open(const std::string& path, bool write) {
  const int flags = write ? O_RDWR | O_TRUNC | O_NOFOLLOW : O_RDONLY;
  const int descriptor = open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  struct stat status;
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) return fdopen(descriptor, write ? "w+b" : "rb");
  close(descriptor);
  errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
  return nullptr;
}
#endif

FILE* OpenBuffered(const std::string& path, bool write, std::string& reason) {
  FILE* file = Open(path, write);
  if (file == nullptr) {
    reason = std::string(write ? "the output cannot be opened: " : "the file cannot be opened: ") +
             (errno == EINVAL ? "it is no regular file" : std::strerror(errno));
  } else {
    std::setvbuf(file, nullptr, _IOFBF, BufferSize);
  }
  return file;
}

FILE* AsFile(fi_handle handle) {
  return static_cast<FILE*>(handle);
}

int shortReads = 0;

unsigned ReadProc(void* buffer, unsigned size, unsigned count, fi_handle handle) {
  const size_t read = std::fread(buffer, size, count, AsFile(handle));
  if (read < count) ++shortReads;
  return static_cast<unsigned>(read);
}
unsigned WriteProc(void* buffer, unsigned size, unsigned count, fi_handle handle) {
  return static_cast<unsigned>(std::fwrite(buffer, size, count, AsFile(handle)));
}
int SeekProc(fi_handle handle, long offset, int origin) {
  return std::fseek(AsFile(handle), offset, origin);
}
long TellProc(fi_handle handle) {
  return std::ftell(AsFile(handle));
}

}  // namespace

ImageFile ImageFile::OpenForReading(const std::string& path, std::string& reason) {
  ImageFile file;
  file.m_file.reset(OpenBuffered(path, false, reason));
  return file;
}

ImageFile ImageFile::OpenForWriting(const std::string& path, std::string& reason) {
  ImageFile file;
  file.m_file.reset(OpenBuffered(path, true, reason));
  return file;
}

int ImageFile::ShortReads() {
  return shortReads;
}

void ImageFile::ForgetShortReads() {
  shortReads = 0;
}

FreeImageIO* FileAccess() {
  static FreeImageIO access{ReadProc, WriteProc, SeekProc, TellProc};
  return &access;
}

}  // namespace tarnwick::images

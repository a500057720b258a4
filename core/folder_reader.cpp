#include "core/folder_reader.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <iterator>
#include <list>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

#include "core/paths.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#endif

namespace tarnwick::core {

namespace fs = std::filesystem;

#ifdef _WIN32

// The library's iterators reach no folder whose path is longer than 260 characters, and ask for each file anew what the
// system has told with its name.
struct FolderReader::State {
  fs::path Folder;
  HANDLE Search = INVALID_HANDLE_VALUE;
  WIN32_FIND_DATAW Entry{};
  bool First = true;

  bool Has(DWORD attribute) const { return (Entry.dwFileAttributes & attribute) != 0; }
  // Other reparse points are files and folders that are kept in another way.
  bool IsLink() const { return Has(FILE_ATTRIBUTE_REPARSE_POINT) && IsReparseTagNameSurrogate(Entry.dwReserved0); }
};

namespace {

std::error_code LastError() {
  return {static_cast<int>(GetLastError()), std::system_category()};
}

fs::path Reached(const fs::path& path) {
  return NativePath(PathText(path));
}

}  // namespace

FolderReader::FolderReader(const NativeText& folder) : m_state(std::make_unique<State>()) {
  m_state->Folder = folder;
  const fs::path all = Reached((folder.empty() ? fs::path(".") : m_state->Folder) / "*");
  m_state->Search = FindFirstFileExW(all.c_str(), FindExInfoBasic, &m_state->Entry, FindExSearchNameMatch, nullptr,
                                     FIND_FIRST_EX_LARGE_FETCH);
  // The root of a drive may hold nothing, not even itself.
  if (m_state->Search == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_NOT_FOUND) m_error = LastError();
}

FolderReader::~FolderReader() {
  if (m_state->Search != INVALID_HANDLE_VALUE) FindClose(m_state->Search);
}

bool FolderReader::Next() {
  if (m_state->Search == INVALID_HANDLE_VALUE || m_error) return false;
  std::wstring_view name;
  do {
    if (!std::exchange(m_state->First, false) && FindNextFileW(m_state->Search, &m_state->Entry) == 0) {
      if (GetLastError() != ERROR_NO_MORE_FILES) m_error = LastError();
      return false;
    }
    name = m_state->Entry.cFileName;
  } while (name == L"." || name == L"..");
  return true;
}

std::string FolderReader::Name() const {
  return PathText(m_state->Entry.cFileName);
}

FolderReader::NativeText FolderReader::Native() const {
  return (m_state->Folder / m_state->Entry.cFileName).native();
}

std::string FolderReader::Text() const {
  return PathText(Path());
}

bool FolderReader::IsFolder() const {
  return m_state->Has(FILE_ATTRIBUTE_DIRECTORY);
}

bool FolderReader::IsFile() const {
  std::error_code ignored;
  return !IsFolder() && (!m_state->IsLink() || fs::is_regular_file(Reached(Path()), ignored));
}

bool FolderReader::IsLink() const {
  return m_state->IsLink();
}

uint64_t FolderReader::Size() const {
  std::error_code error;
  if (!m_state->IsLink()) return uint64_t{m_state->Entry.nFileSizeHigh} << 32 | m_state->Entry.nFileSizeLow;
  const uint64_t size = fs::file_size(Reached(Path()), error);
  return error ? 0 : size;
}

void RemoveFolder(const fs::path& folder) {
  std::error_code ignored;
  {
    FolderReader entries(folder);
    while (entries.Next()) {
      if (entries.IsFolder() && !entries.IsLink()) {
        RemoveFolder(entries.Path());
      } else {
        fs::remove(Reached(entries.Path()), ignored);
      }
    }
  }
  fs::remove(Reached(folder), ignored);
}

#else

// The library makes a path of each entry, whether it is wanted or not, and takes it apart.
struct FolderReader::State {
  std::string Folder;  // with a slash behind it
  DIR* Stream = nullptr;
  const dirent* Entry = nullptr;

  /// Whether it is of that kind, which the system mostly tells with the name; a link is what it leads to.
  bool Is(unsigned char kind, mode_t mode) const {
    if (Entry->d_type != DT_UNKNOWN && Entry->d_type != DT_LNK) return Entry->d_type == kind;
    struct stat status {};
    return fstatat(dirfd(Stream), Entry->d_name, &status, 0) == 0 && (status.st_mode & S_IFMT) == mode;
  }
};

FolderReader::FolderReader(const NativeText& folder) : m_state(std::make_unique<State>()) {
  m_state->Folder = folder.empty() ? "." : folder;
  m_state->Stream = opendir(m_state->Folder.c_str());
  if (!m_state->Folder.ends_with('/')) m_state->Folder += '/';
  if (m_state->Stream == nullptr) m_error = {errno, std::generic_category()};
}

FolderReader::~FolderReader() {
  if (m_state->Stream != nullptr) closedir(m_state->Stream);
}

bool FolderReader::Next() {
  if (m_error) return false;
  const std::string_view self = ".", parent = "..";
  do {
    errno = 0;
    m_state->Entry = readdir(m_state->Stream);
    if (m_state->Entry == nullptr) {
      m_error = {errno, std::generic_category()};
      return false;
    }
  } while (m_state->Entry->d_name == self || m_state->Entry->d_name == parent);
  return true;
}

std::string FolderReader::Name() const {
  return m_state->Entry->d_name;
}

FolderReader::NativeText FolderReader::Native() const {
  return m_state->Folder + m_state->Entry->d_name;
}

std::string FolderReader::Text() const {
  return Native();
}

bool FolderReader::IsFolder() const {
  return m_state->Is(DT_DIR, S_IFDIR);
}

bool FolderReader::IsFile() const {
  return m_state->Is(DT_REG, S_IFREG);
}

bool FolderReader::IsLink() const {
  struct stat status {};
  if (m_state->Entry->d_type != DT_UNKNOWN) return m_state->Entry->d_type == DT_LNK;
  return fstatat(dirfd(m_state->Stream), m_state->Entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISLNK(status.st_mode);
}

uint64_t FolderReader::Size() const {
  struct stat status {};
  if (fstatat(dirfd(m_state->Stream), m_state->Entry->d_name, &status, 0) != 0 || !S_ISREG(status.st_mode)) return 0;
  return static_cast<uint64_t>(status.st_size);
}

void RemoveFolder(const fs::path& folder) {
  std::error_code ignored;
  fs::remove_all(folder, ignored);
}

#endif

namespace {

/// The search below a folder.
class FolderWalk {
 public:
  FolderWalk(bool recursive, const std::function<bool(std::string_view)>& wants)
      : m_recursive(recursive), m_wants(wants) {}

  std::vector<FileBelow> Run(const fs::path& folder, std::error_code& error) {
    m_folders.push_back({folder.native(), {}});
    Work();
    m_others.clear();
    error = m_error;
    return {std::make_move_iterator(m_files.begin()), std::make_move_iterator(m_files.end())};
  }

 private:
  struct Folder {
    FolderReader::NativeText Path;
    std::string Below;  // with a separator behind it
  };
  /// What a thread has found in a folder. To add it to what is known takes no memory that could run out.
  struct Found {
    std::list<FileBelow> Files;
    std::list<Folder> Folders;
    std::error_code Error;
  };

  /// Reads folders until there is none left and nobody reads one in which there may be others.
  void Work() {
    std::unique_lock lock(m_lock);
    while (true) {
      m_changed.wait(lock, [this] { return !m_folders.empty() || m_reading == 0 || m_error; });
      if (m_folders.empty() || m_error) return;
      const Folder folder = std::move(m_folders.back());
      m_folders.pop_back();
      ++m_reading;
      if (m_folders.size() >= Many && m_others.size() < m_mostOthers) AddThread();
      lock.unlock();
      Found found = Read(folder);
      lock.lock();
      --m_reading;
      if (found.Error) m_error = found.Error;
      m_files.splice(m_files.end(), found.Files);
      m_folders.splice(m_folders.end(), found.Folders);
      m_changed.notify_all();
    }
  }

  void AddThread() {
    try {
      m_others.emplace_back([this] { Work(); });
    } catch (const std::exception&) {  // there are too many, or memory runs out
      m_mostOthers = 0;
    }
  }

  Found Read(const Folder& folder) const {
    Found found;
    try {
      FolderReader entries(folder.Path);
      while (entries.Next()) {
        const std::string name = entries.Name();
        if (m_recursive && entries.IsFolder() && !entries.IsLink()) {
          found.Folders.push_back({entries.Native(), folder.Below + name + PathSeparator});
        } else if (m_wants(name) && entries.IsFile()) {
          found.Files.push_back({entries.Text(), folder.Below + name});
        }
      }
      if (entries.Error() != std::errc::permission_denied) found.Error = entries.Error();
    } catch (const std::bad_alloc&) {
      found.Error = std::make_error_code(std::errc::not_enough_memory);
    }
    return found;
  }

  static constexpr size_t Many = 16;  // folders still to be read, from which on another thread pays

  const bool m_recursive;
  const std::function<bool(std::string_view)>& m_wants;
  std::mutex m_lock;  // of all that follows
  size_t m_mostOthers = std::clamp(std::thread::hardware_concurrency(), 1U, 4U) - 1;
  std::condition_variable m_changed;
  std::list<Folder> m_folders;  // still to be read
  size_t m_reading = 0;
  std::list<FileBelow> m_files;
  std::error_code m_error;
  std::vector<std::jthread> m_others;
};

}  // namespace

std::vector<FileBelow> FilesBelow(const fs::path& folder, bool recursive,
                                  const std::function<bool(std::string_view)>& wants, std::error_code& error) {
  return FolderWalk(recursive, wants).Run(folder, error);
}

}  // namespace tarnwick::core

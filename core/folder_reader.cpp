#include "core/folder_reader.h"

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

FolderReader::FolderReader(const fs::path& folder) : m_state(std::make_unique<State>()) {
  m_state->Folder = folder;
  const fs::path all = Reached((folder.empty() ? fs::path(".") : folder) / "*");
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

fs::path FolderReader::Path() const {
  return m_state->Folder / m_state->Entry.cFileName;
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

FolderReader::FolderReader(const fs::path& folder) : m_state(std::make_unique<State>()) {
  m_state->Folder = folder.empty() ? "." : folder.native();
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

fs::path FolderReader::Path() const {
  return m_state->Folder + m_state->Entry->d_name;
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

std::vector<FileBelow> FilesBelow(const fs::path& folder, bool recursive,
                                  const std::function<bool(std::string_view)>& wants, std::error_code& error) {
  std::vector<FileBelow> files;
  std::vector<FileBelow> folders{{folder, {}}};  // still to be read
  while (!folders.empty()) {
    const FileBelow read = std::move(folders.back());
    folders.pop_back();
    FolderReader entries(read.Path);
    while (entries.Next()) {
      const std::string name = entries.Name();
      const bool goesBelow = recursive && entries.IsFolder() && !entries.IsLink();
      if (!goesBelow && (!wants(name) || !entries.IsFile())) continue;
      FileBelow below{entries.Path(), read.Below + name};
      if (!goesBelow) {
        files.push_back(std::move(below));
      } else {
        below.Below += PathSeparator;
        folders.push_back(std::move(below));
      }
    }
    error = entries.Error();
    if (error == std::errc::permission_denied) error.clear();
    if (error) break;
  }
  return files;
}

}  // namespace tarnwick::core

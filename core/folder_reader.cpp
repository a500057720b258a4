#include "core/folder_reader.h"

#include <utility>

#include "core/paths.h"

#ifdef _WIN32
#include <windows.h>
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

struct FolderReader::State {
  fs::directory_iterator Entry;
  bool First = true;
};

FolderReader::FolderReader(const fs::path& folder) : m_state(std::make_unique<State>()) {
  m_state->Entry = fs::directory_iterator(folder.empty() ? fs::path(".") : folder, m_error);
}

FolderReader::~FolderReader() = default;

bool FolderReader::Next() {
  if (m_error || m_state->Entry == fs::directory_iterator()) return false;
  if (!std::exchange(m_state->First, false)) m_state->Entry.increment(m_error);
  return !m_error && m_state->Entry != fs::directory_iterator();
}

std::string FolderReader::Name() const {
  const std::string& path = m_state->Entry->path().native();
  return path.substr(path.rfind('/') + 1);
}

fs::path FolderReader::Path() const {
  return m_state->Entry->path();
}

bool FolderReader::IsFolder() const {
  std::error_code ignored;
  return m_state->Entry->is_directory(ignored);
}

bool FolderReader::IsFile() const {
  std::error_code ignored;
  return m_state->Entry->is_regular_file(ignored);
}

bool FolderReader::IsLink() const {
  std::error_code ignored;
  return m_state->Entry->is_symlink(ignored);
}

uint64_t FolderReader::Size() const {
  std::error_code error;
  const uint64_t size = m_state->Entry->file_size(error);
  return error ? 0 : size;
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

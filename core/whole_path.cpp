#include "core/whole_path.h"

#include <algorithm>

#include "core/paths.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace tarnwick::core {

namespace fs = std::filesystem;

#ifdef _WIN32

std::string PathBelow(std::string_view folder, std::string_view name) {
  // Not two native paths put together: a relative one that is long would be a whole one, below the current folder.
  const bool isWhole = name.starts_with('/') || name.starts_with('\\') || (name.size() > 1 && name[1] == ':');
  std::string path(isWhole ? std::string_view() : folder);
  if (!path.empty() && !LastComponent(path).empty()) path += PathSeparator;
  return path += name;
}

namespace {

constexpr size_t LongestOfAll = size_t{1} << 15;  // characters of a path

fs::path Usual(std::wstring_view path) {
  constexpr std::wstring_view Unchanged = L"\\\\?\\", UnchangedShare = L"\\\\?\\UNC\\";
  if (path.starts_with(UnchangedShare)) return L"\\\\" + std::wstring(path.substr(UnchangedShare.size()));
  return path.starts_with(Unchanged) ? path.substr(Unchanged.size()) : path;
}

fs::path Whole(const fs::path& path) {
  std::wstring whole(LongestOfAll, L'\0');
  const fs::path usual = Usual(path.native());
  const DWORD size = GetFullPathNameW(usual.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr);
  if (size == 0 || size >= whole.size()) return usual;
  whole.resize(size);
  while (whole.size() > 3 && whole.back() == L'\\') whole.pop_back();  // but that of a drive
  return whole;
}

}  // namespace

// The library's functions follow no links, and know nothing of paths in the long form.
fs::path RealPath(const fs::path& path, std::error_code& error) {
  error.clear();
  const fs::path native = NativePath(PathText(Whole(path)));
  const HANDLE file = CreateFileW(native.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    error = std::error_code(static_cast<int>(GetLastError()), std::system_category());
    return {};
  }
  std::wstring name(LongestOfAll, L'\0');
  const DWORD size =
      GetFinalPathNameByHandleW(file, name.data(), static_cast<DWORD>(name.size()), FILE_NAME_NORMALIZED);
  CloseHandle(file);
  if (size == 0 || size >= name.size()) return Whole(path);  // not every volume has a name
  name.resize(size);
  return Usual(name);
}

fs::path RealPathOfNew(const fs::path& path, std::error_code& error) {
  const fs::path whole = Whole(path);
  fs::path rest;
  for (fs::path known = whole;; known = known.parent_path()) {
    fs::path real = RealPath(known, error);
    if (!error) return rest.empty() ? real : real / rest;
    if (known == known.parent_path()) return whole;  // there is no such drive
    rest = rest.empty() ? known.filename() : known.filename() / rest;
  }
}

#else

std::string PathBelow(std::string_view folder, std::string_view name) {
  const bool isWhole = name.starts_with('/') || name.starts_with('\\');
  std::string path(isWhole ? std::string_view() : folder);
  if (!path.empty() && !LastComponent(path).empty()) path += PathSeparator;
  path += name;
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

fs::path RealPath(const fs::path& path, std::error_code& error) {
  return fs::canonical(path, error);
}

fs::path RealPathOfNew(const fs::path& path, std::error_code& error) {
  return fs::weakly_canonical(path, error);
}

#endif

}  // namespace tarnwick::core

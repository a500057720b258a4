#include "core/paths.h"

#include <algorithm>

#include "core/folder_reader.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace tarnwick::core {

namespace fs = std::filesystem;

#ifdef _WIN32

namespace {

// The form of a path that the system takes as it is, of any length.
constexpr std::wstring_view Unchanged = L"\\\\?\\";
constexpr std::wstring_view UnchangedShare = L"\\\\?\\UNC\\";

/// A path that is longer than the system takes in the usual form, unless its owner has said otherwise, in the other.
fs::path Reachable(fs::path path) {
  constexpr size_t LongestUsual = 247;  // of a folder: a file in it must have room for a short name
  constexpr std::wstring_view Share = L"\\\\";
  std::error_code error;
  // Everything that the system would change must be changed already: slashes, dots, what a relative path is beside.
  std::wstring whole;
  const std::wstring& given = path.native();
  const auto isSlash = [&](size_t at) { return at < given.size() && (given[at] == L'/' || given[at] == L'\\'); };
  if (given.starts_with(Unchanged)) return path;
  if (isSlash(0) && isSlash(1)) {  // which the library takes for a folder of the current drive
    whole = Share;
    whole += fs::path(given.substr(2)).lexically_normal().make_preferred().native();
  } else if (!path.empty()) {
    whole = (path.is_absolute() ? path : fs::absolute(path, error)).lexically_normal().make_preferred().native();
  }
  if (error) return path;
  // The library cannot make a folder in the current one of a drive: a drive without a slash behind it is none to it.
  if (path.has_root_name() && !path.has_root_directory() && whole.size() <= LongestUsual) return whole;
  if (whole.size() <= LongestUsual) return path;
  const std::wstring_view view = whole;
  if (view.starts_with(Share)) return std::wstring(UnchangedShare).append(view.substr(Share.size()));
  return std::wstring(Unchanged).append(view);
}

}  // namespace

#endif

fs::path NativePath(std::string_view path) {
#ifdef _WIN32
  // Bytes that are no characters become the sign for that, which no file is named by; the library would throw.
  std::wstring wide(path.size(), L'\0');
  const auto size = static_cast<int>(path.size());
  wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, path.data(), size, wide.data(), size)));
  return Reachable(std::move(wide));
#else
  std::string text(path);
  std::replace(text.begin(), text.end(), '\\', '/');
  return fs::path(std::move(text));
#endif
}

std::string PathText(const fs::path& path) {
#ifdef _WIN32
  std::wstring_view whole = path.native();
  std::wstring share;
  if (whole.starts_with(UnchangedShare)) {
    share = L"\\\\" + std::wstring(whole.substr(UnchangedShare.size()));
    whole = share;
  } else if (whole.starts_with(Unchanged)) {
    whole.remove_prefix(Unchanged.size());
  }
  std::string text(whole.size() * 3, '\0');
  const auto size = static_cast<int>(whole.size());
  text.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, whole.data(), size, text.data(),
                                                      static_cast<int>(text.size()), nullptr, nullptr)));
  return text;
#else
  return path.string();
#endif
}

std::string_view LastComponent(std::string_view path) {
  const size_t separator = path.find_last_of("/\\");
#ifdef _WIN32  // "c:a.mdl" is a.mdl in the folder that is the current one of drive c
  if (separator == std::string_view::npos && path.size() > 1 && path[1] == ':') return path.substr(2);
#endif
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

std::string_view DirectoryWithSeparator(std::string_view path) {
  return path.substr(0, path.size() - LastComponent(path).size());
}

std::string LowerAscii(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

std::string UpperAscii(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

bool FileExists(const std::string& path) {
#ifdef _WIN32
  std::error_code error;
  const auto status = fs::status(NativePath(path), error);
  return !error && fs::exists(status) && !fs::is_directory(status);
#else  // asked so often that taking the path apart for it would be the greater part
  std::string native = path;
  std::replace(native.begin(), native.end(), '\\', '/');
  struct stat status {};
  return stat(native.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
#endif
}

std::optional<std::string> FindIgnoringCase(const std::string& path) {
  if (FileExists(path)) return path;
  const std::string_view name = LastComponent(path);
  const std::string folder(DirectoryWithSeparator(path));
  std::optional<std::string> found;
  FolderReader entries(NativePath(folder));
  while (entries.Next()) {
    const std::string entry = entries.Name();
    if (!EqualIgnoringCase(entry, name) || !FileExists(folder + entry)) continue;
    if (found) return std::nullopt;
    found = folder + entry;
  }
  return found;
}

}  // namespace tarnwick::core

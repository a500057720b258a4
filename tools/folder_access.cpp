#include "tools/folder_access.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

#include "core/paths.h"

namespace tarnwick::tools {

namespace fs = std::filesystem;

namespace {

#ifdef _WIN32
/// Only an attempt tells, since rights come from lists: a file that is gone when it is closed.
std::optional<std::string> TryToWrite(const fs::path& folder) {
  const fs::path probe = folder / (L"tarnwick-" + std::to_wstring(GetCurrentProcessId()) + L".tmp");
  const HANDLE file = CreateFileW(probe.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    return std::error_code(static_cast<int>(GetLastError()), std::system_category()).message();
  }
  CloseHandle(file);
  return std::nullopt;
}
#else
std::optional<std::string> TryToWrite(const fs::path& folder) {
  if (access(folder.c_str(), W_OK | X_OK) == 0) return std::nullopt;
  return std::generic_category().message(errno);
}
#endif

}  // namespace

std::optional<std::string> WhyNotWritable(const std::string& path) {
  std::error_code error;
  fs::path folder = fs::absolute(core::NativePath(path.empty() ? "." : path), error);
  while (!fs::exists(folder, error) && folder.has_relative_path()) folder = folder.parent_path();
  if (!fs::is_directory(folder, error)) return std::generic_category().message(ENOTDIR);
  return TryToWrite(folder);
}

}  // namespace tarnwick::tools

#include "core/write_time.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace tarnwick::core {

std::optional<int64_t> WriteTime(const std::filesystem::path& path) {
#ifdef _WIN32
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
  const FILETIME time = data.ftLastWriteTime;
  return static_cast<int64_t>(uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
#else
  constexpr int64_t Second = 1'000'000'000;
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return int64_t{status.st_mtim.tv_sec} * Second + status.st_mtim.tv_nsec;
#endif
}

}  // namespace tarnwick::core

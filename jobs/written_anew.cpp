#include "jobs/written_anew.h"

#include "core/paths.h"

namespace tarnwick::jobs {

namespace fs = std::filesystem;

namespace {

std::optional<fs::file_time_type> TimeOf(const fs::path& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return std::nullopt;
  const auto time = fs::last_write_time(path, error);
  return error ? std::nullopt : std::optional(time);
}

}  // namespace

FileBefore::FileBefore(const std::string& path) : m_path(core::NativePath(path)), m_time(TimeOf(m_path)) {}

bool FileBefore::IsWrittenAnew() const {
  const auto now = TimeOf(m_path);
  return now && now != m_time;
}

}  // namespace tarnwick::jobs

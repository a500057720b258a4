#include "jobs/written_anew.h"

#include <utility>

#include "core/paths.h"

namespace tarnwick::jobs {

namespace fs = std::filesystem;

namespace {

/// When the file at `path`, if there is one, was written last.
std::optional<fs::file_time_type> TimeOf(const std::optional<std::string>& path) {
  std::error_code error;
  if (!path || !fs::is_regular_file(core::NativePath(*path), error)) return std::nullopt;
  const auto time = fs::last_write_time(core::NativePath(*path), error);
  return error ? std::nullopt : std::optional(time);
}

}  // namespace

FileBefore::FileBefore(std::string path) : m_path(std::move(path)), m_time(TimeOf(core::FindIgnoringCase(m_path))) {}

std::optional<std::string> FileBefore::NewFile() const {
  std::optional<std::string> found = core::FindIgnoringCase(m_path);
  const auto now = TimeOf(found);
  if (!now || now == m_time) return std::nullopt;
  return found;
}

}  // namespace tarnwick::jobs

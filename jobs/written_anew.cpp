#include "jobs/written_anew.h"

#include <filesystem>
#include <utility>

#include "core/paths.h"
#include "core/write_time.h"

namespace tarnwick::jobs {

namespace {

/// When the file at `path`, if there is one, was written last.
std::optional<int64_t> TimeOf(const std::optional<std::string>& path) {
  std::error_code error;
  if (!path || !std::filesystem::is_regular_file(core::NativePath(*path), error)) return std::nullopt;
  return core::WriteTime(core::NativePath(*path));
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

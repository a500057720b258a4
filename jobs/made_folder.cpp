#include "jobs/made_folder.h"

#include <algorithm>
#include <mutex>

#include "core/paths.h"

namespace tarnwick::jobs {

namespace fs = std::filesystem;

namespace {

/// Jobs that run side by side share the folders above their own: one of them must not take away an empty folder in
/// which another is just making its own.
std::mutex& FoldersMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

MadeFolder::~MadeFolder() {
  const std::lock_guard lock(FoldersMutex());
  std::error_code notEmpty;
  for (; !m_made.empty() && !notEmpty; m_made.pop_back()) fs::remove(m_made.back(), notEmpty);
}

std::string MadeFolder::Make(const std::string& path) {
  const std::lock_guard lock(FoldersMutex());
  const fs::path folder = core::NativePath(path);
  std::error_code error;
  if (fs::create_directory(folder, error)) m_made.push_back(folder);
  if (!error) return "";  // as nearly always: only the innermost folder was missing, or none
  error.clear();
  const auto known = m_made.size();
  for (fs::path part = folder; !part.empty() && !fs::exists(part, error) && part != part.parent_path();
       part = part.parent_path()) {
    if (part.has_filename()) m_made.push_back(part);
  }
  std::reverse(m_made.begin() + static_cast<ptrdiff_t>(known), m_made.end());
  fs::create_directories(folder, error);
  std::error_code ignored;
  return fs::is_directory(folder, ignored) ? std::string() : error.message();
}

}  // namespace tarnwick::jobs

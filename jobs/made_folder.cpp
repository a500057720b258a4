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

/// Makes the folder, and those that lead to it, where only these are missing; they are added to `made`. False if there
/// is more to it.
bool MakeFrom(const fs::path& folder, std::vector<fs::path::string_type>& made) {
  std::error_code error;
  bool isNew = fs::create_directory(folder, error);
  if (error == std::errc::no_such_file_or_directory) {
    const fs::path parent = folder.parent_path();
    if (parent.empty() || parent == folder || !MakeFrom(parent, made)) return false;
    isNew = fs::create_directory(folder, error);
  }
  if (isNew) made.push_back(folder.native());
  return !error;
}

}  // namespace

MadeFolder::~MadeFolder() {
  const std::lock_guard lock(FoldersMutex());
  std::error_code notEmpty;
  for (; !m_made.empty() && !notEmpty; m_made.pop_back()) fs::remove(m_made.back(), notEmpty);
}

std::string MadeFolder::Make(const std::string& path) {
  return Make(core::NativePath(path));
}

std::string MadeFolder::Make(const fs::path& folder) {
  const std::lock_guard lock(FoldersMutex());
  std::error_code error;
  if (MakeFrom(folder, m_made)) return "";
  const auto known = m_made.size();
  for (fs::path part = folder; !part.empty() && !fs::exists(part, error) && part != part.parent_path();
       part = part.parent_path()) {
    if (part.has_filename()) m_made.push_back(part.native());
  }
  std::reverse(m_made.begin() + static_cast<ptrdiff_t>(known), m_made.end());
  fs::create_directories(folder, error);
  std::error_code ignored;
  return fs::is_directory(folder, ignored) ? std::string() : error.message();
}

}  // namespace tarnwick::jobs

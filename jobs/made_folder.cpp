#include "jobs/made_folder.h"

#include "core/paths.h"

namespace tarnwick::jobs {

namespace fs = std::filesystem;

MadeFolder::~MadeFolder() {
  std::error_code notEmpty;
  for (; !m_made.empty() && !notEmpty; m_made.pop_back()) fs::remove(m_made.back(), notEmpty);
}

std::string MadeFolder::Make(const std::string& path) {
  const fs::path folder = core::NativePath(path);
  std::error_code error;
  fs::path built;
  for (const fs::path& part : folder) {
    built /= part;
    if (!part.empty() && !fs::exists(built, error)) m_made.push_back(built);
  }
  fs::create_directories(folder, error);
  return fs::is_directory(folder) ? std::string() : error.message();
}

}  // namespace tarnwick::jobs

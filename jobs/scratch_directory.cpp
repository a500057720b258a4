#include "jobs/scratch_directory.h"

#include <random>
#include <system_error>

#include "core/folder_reader.h"

namespace tarnwick::jobs {

namespace fs = std::filesystem;

namespace {

constexpr int Attempts = 20;

}  // namespace

ScratchDirectory::ScratchDirectory() {
  std::error_code error;
  const fs::path top = fs::temp_directory_path(error);
  std::random_device random;
  for (int i = 0; i < Attempts && !error; ++i) {
    fs::path path = top / ("tarnwick-" + std::to_string(random()) + std::to_string(random()));
    // A name that somebody has taken is left to him.
    if (!fs::create_directory(path, error)) continue;
    fs::permissions(path, fs::perms::owner_all, error);
    m_path = std::move(path);
    return;
  }
  m_problem = error ? error.message() : "every name is taken";
}

ScratchDirectory::~ScratchDirectory() {
  if (!m_path.empty()) core::RemoveFolder(m_path);
}

}  // namespace tarnwick::jobs

#include "archives/output_folder.h"

#include <algorithm>

#include "archives/safe_name.h"
#include "core/paths.h"
#include "core/whole_path.h"

namespace tarnwick::archives {

namespace fs = std::filesystem;

namespace {

bool Inside(const fs::path& path, const fs::path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

}  // namespace

bool OutputFolder::Open(const std::string& path, std::string& reason) {
  m_path = path;
  std::error_code error;
  fs::create_directories(core::NativePath(path), error);
  if (!error) m_root = core::RealPath(core::NativePath(path), error);
  if (error) reason = error.message();
  return !error;
}

OutputFolder::Answer OutputFolder::Place(const std::string& name, fs::path& target, std::string& reason) {
  reason = UnsafeReason(name);
  if (!reason.empty()) {
    reason += "; it is not written";
    return Answer::Refused;
  }
  target = core::NativePath(core::PathBelow(core::PathText(m_root), name));
  // A folder is made, and found out where it lies, once.
  const auto [known, isNew] = m_folders.try_emplace(target.parent_path());
  if (isNew) known->second = FolderReason(target.parent_path());
  reason = known->second;
  if (!reason.empty()) return Answer::Unwritable;
  std::error_code error;
  if (!fs::is_symlink(fs::symlink_status(target, error))) return Answer::Ready;
  reason = "a link of that name lies in the output folder";
  return Answer::Refused;
}

std::string OutputFolder::PathOf(const std::string& name) const {
  return core::PathBelow(m_path, name);
}

std::string OutputFolder::FolderReason(const fs::path& folder) const {
  // What is there of the path so far must not lead outside before anything is made in it.
  std::error_code error;
  const fs::path real = core::RealPathOfNew(folder, error);
  if (!error && !Inside(real, m_root)) {
    return core::PathText(folder) + ": a link leads outside the output folder; nothing is written there";
  }
  if (!error) fs::create_directories(folder, error);
  return error ? core::PathText(folder) + ": " + error.message() : "";
}

}  // namespace tarnwick::archives

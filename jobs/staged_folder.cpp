#include "jobs/staged_folder.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "core/folder_reader.h"
#include "core/output_file.h"
#include "core/paths.h"
#include "core/whole_path.h"

namespace tarnwick::jobs {

namespace fs = std::filesystem;

namespace {

/// Whether a folder of that path is new, and has a name to be renamed to.
bool IsNew(const std::string& path, const fs::path& native) {
  const std::string_view name = core::LastComponent(path);
  if (name.empty() || name == "." || name == "..") return false;
  std::error_code error;
  return fs::symlink_status(native, error).type() == fs::file_type::not_found;
}

}  // namespace

StagedFolder::~StagedFolder() {
  std::error_code error;
  if (!m_staged.empty() && !fs::is_empty(m_nativeStaged, error) && !error) static_cast<void>(Commit());
}

std::string StagedFolder::Make(const std::string& path) {
  m_path = path;
  m_native = core::NativePath(path);
  if (IsNew(path, m_native)) {
    m_staged = core::PathText(core::TemporaryName(m_native.native()));
    m_nativeStaged = core::NativePath(m_staged);
    if (m_made.Make(m_nativeStaged).empty()) return "";
    m_staged.clear();
  }
  return m_made.Make(m_native);
}

std::optional<core::OutputFile> StagedFolder::Create(std::string path, std::string* reason) {
  const bool isInside = !m_staged.empty() && path.starts_with(m_path) && path.size() > m_path.size() &&
                        path[m_path.size()] == core::PathSeparator;
  if (!isInside) return core::OutputFile::Create(std::move(path), reason);
  std::string place = m_staged + path.substr(m_path.size());
  return core::OutputFile::CreateApart(std::move(path), std::move(place), reason);
}

std::string StagedFolder::Commit() {
  m_made.Keep();
  if (m_staged.empty()) return "";
  std::error_code error;
  fs::rename(m_nativeStaged, m_native, error);
  std::string problem = error ? MoveFiles() : std::string();
  m_staged.clear();
  return problem;
}

std::string StagedFolder::MoveFiles() {
  std::error_code error;
  fs::create_directory(m_native, error);
  for (core::FolderReader reader(m_nativeStaged); !error && reader.Next();) {
    fs::rename(core::NativePath(core::PathBelow(m_staged, reader.Name())),
               core::NativePath(core::PathBelow(m_path, reader.Name())), error);
  }
  core::RemoveFolder(m_nativeStaged);
  return error ? error.message() : std::string();
}

}  // namespace tarnwick::jobs

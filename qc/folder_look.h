#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/file_store.h"

namespace tarnwick::qc {

/// Whether `path` does not depend on a folder: it begins with a slash of either kind or a drive letter.
bool IsAbsolute(std::string_view path);
/// `path` below `folder` ("" is the current one), with forward slashes; an absolute path as it is, without a drive `Z:`
/// where that is what Wine calls the root.
std::string Below(std::string_view folder, std::string_view path);

/// Finds files and folders whatever case and slashes a script names them by. What a folder holds is read once, so an
/// object sees the store as it was when it first looked.
class FolderLook {
 public:
  explicit FolderLook(const core::FileStore& files = core::DiskStore()) : m_files(files) {}

  /// The file at `path`: exactly that one, or one that differs in the case of some letters. Nothing if there is none.
  std::optional<std::string> FindFile(const std::string& path);
  /// The same for a folder.
  std::optional<std::string> FindFolder(const std::string& path);
  /// The names in a folder, as it has them, sorted; none if it cannot be read.
  const std::vector<std::string>& Names(const std::string& folder);

 private:
  struct Entries {
    std::vector<std::string> Names;
    std::multimap<std::string, size_t> ByLowerName;
  };
  bool Exists(const std::string& path, bool folder) const;
  const Entries& EntriesOf(const std::string& folder);
  std::optional<std::string> Find(const std::string& path, bool folder);

  const core::FileStore& m_files;
  std::unordered_map<std::string, Entries> m_folders;
  std::unordered_map<std::string, std::optional<std::string>> m_found[2];
};

}  // namespace tarnwick::qc

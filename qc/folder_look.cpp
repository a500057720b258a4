#include "qc/folder_look.h"

#include <algorithm>

#include "core/paths.h"

namespace tarnwick::qc {

namespace {

/// A folder of more names is not searched for other case.
constexpr size_t MostNames = 200'000;

/// Whether a path that opens is written as the folders write it. Where it need not be, the folders are asked, so that
/// one file has one path.
#ifdef _WIN32
constexpr bool PathsTellCase = false;
#else
constexpr bool PathsTellCase = true;
#endif

bool HasDrive(std::string_view path) {
  return path.size() > 1 && path[1] == ':' && ((path[0] | 0x20) >= 'a' && (path[0] | 0x20) <= 'z');
}

}  // namespace

bool IsAbsolute(std::string_view path) {
  return path.starts_with('/') || path.starts_with('\\') || HasDrive(path);
}

std::string Below(std::string_view folder, std::string_view path) {
  std::string result;
  if (!IsAbsolute(path)) {
    result = folder;
    if (!result.empty() && !result.ends_with('/') && !result.ends_with('\\')) result += '/';
#ifndef _WIN32
  } else if (HasDrive(path) && (path[0] | 0x20) == 'z') {
    path.remove_prefix(2);
#endif
  }
  result += path;
  std::replace(result.begin(), result.end(), '\\', '/');
  return result;
}

bool FolderLook::Exists(const std::string& path, bool folder) const {
  return folder ? m_files.HoldsFolder(path.empty() ? "." : path) : m_files.Holds(path);
}

const FolderLook::Entries& FolderLook::EntriesOf(const std::string& folder) {
  const auto [known, isNew] = m_folders.try_emplace(folder);
  Entries& entries = known->second;
  if (!isNew) return entries;
  entries.Names = m_files.NamesIn(folder, MostNames);
  for (size_t i = 0; i < entries.Names.size(); ++i) {
    entries.ByLowerName.emplace(core::LowerAscii(entries.Names[i]), i);
  }
  return entries;
}

const std::vector<std::string>& FolderLook::Names(const std::string& folder) {
  return EntriesOf(folder).Names;
}

std::optional<std::string> FolderLook::Find(const std::string& path, bool folder) {
  if (path.find('\0') != std::string::npos) return std::nullopt;
  auto& memory = m_found[folder ? 1 : 0];
  if (const auto known = memory.find(path); known != memory.end()) return known->second;
  std::optional<std::string> found;
  if (PathsTellCase && Exists(path, folder)) {
    found = path;
  } else {
    // Folder by folder: the name itself if it is there, else the first that differs in case alone.
    std::string sofar = path.starts_with('/') ? "/" : "";
    bool lost = false;
    for (size_t at = 0; at < path.size() && !lost;) {
      const size_t end = std::min(path.size(), path.find('/', at));
      const std::string name = path.substr(at, end - at);
      const bool last = path.find_first_not_of('/', end) == std::string::npos;
      at = end + 1;
      if (name.empty()) continue;
      const bool wantsFolder = folder || !last;
      const bool isDrive = !PathsTellCase && HasDrive(name) && name.size() == 2;
      if (name == "." || name == ".." || isDrive || (PathsTellCase && Exists(sofar + name, wantsFolder))) {
        sofar += name;
      } else {
        const Entries& entries = EntriesOf(sofar);
        auto [first, behind] = entries.ByLowerName.equal_range(core::LowerAscii(name));
        while (first != behind && !Exists(sofar + entries.Names[first->second], wantsFolder)) ++first;
        const bool listed = first != behind;
        // Some folders do not list what they hold.
        lost = !listed && !Exists(sofar + name, wantsFolder);
        sofar += listed ? entries.Names[first->second] : name;
      }
      if (!last) sofar += '/';
    }
    if (!lost && Exists(sofar, folder)) found = sofar;
  }
  return memory.emplace(path, found).first->second;
}

std::optional<std::string> FolderLook::FindFile(const std::string& path) {
  return Find(path, false);
}

std::optional<std::string> FolderLook::FindFolder(const std::string& path) {
  return Find(path, true);
}

}  // namespace tarnwick::qc

#include "core/folder_names.h"

#include "core/folder_reader.h"
#include "core/paths.h"

namespace tarnwick::core {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

/// A folder of fewer names is read as quickly as it is asked whether it has changed.
constexpr size_t Many = 64;
/// Folders that are remembered at a time.
constexpr size_t MostFolders = 16;

/// Two changes so near to each other may bear one time; a listing between them would look like one behind both.
constexpr auto NearChanges = 3s;
/// Some file systems tell no change of a folder.
constexpr auto LongestUse = 2s;

std::optional<fs::file_time_type> TimeOf(const std::string& folder) {
  std::error_code error;
  const auto time = fs::last_write_time(NativePath(folder.empty() ? "." : folder), error);
  return error ? std::nullopt : std::optional(time);
}

}  // namespace

bool FolderNames::IsOf(const Listing& listing, const std::string& folder) {
  return std::chrono::steady_clock::now() - listing.Read < LongestUse && TimeOf(folder) == listing.Changed;
}

/// Nothing where the folder was changed just now.
FolderNames::Known FolderNames::Read(const std::string& folder) {
  const auto changed = TimeOf(folder);
  if (!changed || fs::file_time_type::clock::now() - *changed < NearChanges) return nullptr;
  auto listing = std::make_shared<Listing>();
  listing->Changed = *changed;
  listing->Read = std::chrono::steady_clock::now();
  FolderReader entries(NativePath(folder));
  while (entries.Next()) {
    std::string name = entries.Name();
    std::string folded = LowerAscii(name);
    listing->Names.emplace(std::move(folded), std::move(name));
  }
  return entries.Error() ? nullptr : listing;
}

std::optional<std::string> FolderNames::Find(const std::string& path) {
  if (FileExists(path)) return path;
  const std::string folder(DirectoryWithSeparator(path));
  const std::string_view name = LastComponent(path);
  Known known;
  {
    const std::lock_guard lock(m_lock);
    if (const auto large = m_large.find(folder); large != m_large.end()) {
      if (large->second == nullptr || !IsOf(*large->second, folder)) large->second = Read(folder);
      known = large->second;
    }
  }
  std::optional<std::string> found;
  if (known != nullptr) {
    const auto [first, behind] = known->Names.equal_range(LowerAscii(name));
    for (auto at = first; at != behind; ++at) {
      if (!FileExists(folder + at->second)) continue;
      if (found) return std::nullopt;
      found = folder + at->second;
    }
    return found;
  }
  size_t count = 0;
  bool several = false;
  FolderReader entries(NativePath(folder));
  for (; entries.Next(); ++count) {
    const std::string entry = entries.Name();
    if (!EqualIgnoringCase(entry, name) || !FileExists(folder + entry)) continue;
    several = several || found.has_value();
    found = folder + entry;
  }
  if (count >= Many) {
    const std::lock_guard lock(m_lock);
    if (m_large.size() >= MostFolders) m_large.clear();
    m_large.try_emplace(folder);
  }
  return several ? std::nullopt : found;
}

}  // namespace tarnwick::core

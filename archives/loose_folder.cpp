#include "archives/loose_folder.h"

#include <algorithm>

#include "archives/folded_text.h"
#include "core/folder_reader.h"
#include "core/paths.h"

namespace tarnwick::archives {

namespace {

std::string Joined(const std::string& folder, std::string_view name) {
  std::string path = folder;
  if (!path.ends_with('/') && !path.ends_with('\\')) path += core::PathSeparator;
  return path += name;
}

}  // namespace

/// Orders entries by name, folded first.
struct LooseFolder::FoldedLess {
  bool operator()(const Entry& a, const Entry& b) const {
    const int difference = CompareFolded(a.Name, b.Name);
    return difference != 0 ? difference < 0 : a.Name < b.Name;
  }
  bool operator()(const Entry& a, std::string_view name) const { return CompareFolded(a.Name, name) < 0; }
  bool operator()(std::string_view name, const Entry& b) const { return CompareFolded(name, b.Name) < 0; }
};

std::shared_ptr<const LooseFolder::Listing> LooseFolder::Listed(const std::string& path) const {
  {
    const std::lock_guard lock(m_lock);
    const auto known = m_listings.find(path);
    if (known != m_listings.end()) return known->second;
  }
  auto listing = std::make_shared<Listing>();
  core::FolderReader entries(core::NativePath(path));
  while (entries.Next()) listing->push_back({entries.Name(), entries.IsFolder()});
  std::sort(listing->begin(), listing->end(), FoldedLess());
  const std::lock_guard lock(m_lock);
  return m_listings.emplace(path, std::move(listing)).first->second;
}

/// Adds the files (or folders) `rest` below `folder` to `found`, in all spellings that the disk has.
void LooseFolder::Search(const std::string& folder, std::string_view rest, bool wantFolder,
                         std::vector<std::string>& found) const {
  if (rest.empty()) {
    found.push_back(folder);
    return;
  }
  const size_t slash = rest.find('/');
  const std::string_view part = rest.substr(0, slash);
  const bool last = slash == std::string_view::npos;
  const auto listing = Listed(folder);
  const auto [first, end] = std::equal_range(listing->begin(), listing->end(), part, FoldedLess());
  for (auto entry = first; entry != end; ++entry) {
    if (entry->IsFolder != (!last || wantFolder)) continue;
    const std::string path = Joined(folder, entry->Name);
    // Its own spelling comes first.
    if (last && entry->Name == part) {
      found.insert(found.begin(), path);
    } else {
      Search(path, last ? std::string_view() : rest.substr(slash + 1), wantFolder, found);
    }
  }
}

std::optional<std::string> LooseFolder::Find(std::string_view name) const {
  std::vector<std::string> found;
  if (!name.empty()) Search(m_path, name, false, found);
  if (found.empty()) return std::nullopt;
  return found.front();
}

LooseFolder::Listing LooseFolder::List(std::string_view folder) const {
  std::vector<std::string> folders;
  Search(m_path, folder, true, folders);
  Listing all;
  for (const std::string& path : folders) {
    const auto listing = Listed(path);
    all.insert(all.end(), listing->begin(), listing->end());
  }
  if (folders.size() > 1) std::sort(all.begin(), all.end(), FoldedLess());
  return all;
}

void LooseFolder::Refresh() {
  const std::lock_guard lock(m_lock);
  m_listings.clear();
}

}  // namespace tarnwick::archives

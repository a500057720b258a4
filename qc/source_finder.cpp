#include "qc/source_finder.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "core/paths.h"
#include "qc/messages.h"

namespace tarnwick::qc {

namespace {

constexpr std::array<std::string_view, 3> MeshEndings = {".smd", ".sma", ".phys"};
constexpr std::array<std::string_view, 1> ShapeEndings = {".vta"};
constexpr std::array<std::string_view, 1> BoneEndings = {".vrd"};

std::span<const std::string_view> EndingsOf(SourceKind kind) {
  switch (kind) {
    case SourceKind::Shapes:
      return ShapeEndings;
    case SourceKind::ProceduralBones:
      return BoneEndings;
    default:
      return MeshEndings;
  }
}

/// A path without its first folder; empty where it has none.
std::string_view BehindFolder(std::string_view path) {
  const size_t slash = path.find_first_of("/\\");
  if (slash == std::string_view::npos) return {};
  const size_t next = path.find_first_not_of("/\\", slash);
  return next == std::string_view::npos ? std::string_view() : path.substr(next);
}

/// The end of a path, with no more folders than are looked for one by one.
std::string_view LastParts(std::string_view path) {
  constexpr int MostParts = 8;
  size_t at = path.size();
  for (int i = 0; i < MostParts && at != std::string_view::npos && at > 0; ++i) at = path.find_last_of("/\\", at - 1);
  return at == std::string_view::npos ? path : path.substr(at);
}

/// So many folders below the script's are looked through for a file that is nowhere else.
constexpr size_t MostFoldersBelow = 500;
constexpr int DeepestFolder = 4;
constexpr size_t MostEntries = 2000;
constexpr int MostLooksBelow = 200;

std::string_view EndingOf(std::string_view name) {
  const std::string_view last = core::LastComponent(name);
  const size_t dot = last.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? "" : last.substr(dot);
}

}  // namespace

std::string_view SourceKindName(SourceKind kind) {
  constexpr std::array<std::string_view, 4> Names = {"mesh", "animation", "shape file", "procedural bone file"};
  return Names[static_cast<size_t>(kind)];
}

SourceFinder::SourceFinder(FolderLook& look, std::string scriptFolder)
    : m_look(look), m_scriptFolder(std::move(scriptFolder)), m_stack{m_scriptFolder} {}

std::optional<std::string> SourceFinder::FolderAt(std::string_view base, std::string_view folder) {
  auto found = m_look.FindFolder(Below(base, folder.empty() ? "." : folder));
  // Of another computer's folder the last ones may be here.
  for (std::string_view rest = LastParts(folder);
       !found && IsAbsolute(folder) && !(rest = BehindFolder(rest)).empty();) {
    if (rest.find_first_not_of("/\\.") != std::string_view::npos) found = m_look.FindFolder(Below(base, rest));
  }
  if (found && !found->ends_with('/')) *found += '/';
  return found;
}

bool SourceFinder::SetFolder(std::string_view folder) {
  const auto found = FolderAt(m_scriptFolder, folder);
  m_stack.back() = found.value_or(m_scriptFolder);
  return found.has_value();
}

bool SourceFinder::Push(std::string_view folder) {
  auto found = FolderAt(m_stack.back(), folder);
  if (!found) found = FolderAt(m_scriptFolder, folder);
  m_stack.push_back(found.value_or(m_stack.back()));
  return found.has_value();
}

bool SourceFinder::Pop() {
  if (m_stack.size() == 1) return false;
  m_stack.pop_back();
  return true;
}

bool SourceFinder::AddSearchFolder(std::string_view folder) {
  auto found = FolderAt(m_stack.back(), folder);
  if (!found) found = FolderAt(m_scriptFolder, folder);
  if (found && std::find(m_more.begin(), m_more.end(), *found) == m_more.end()) m_more.push_back(*found);
  return found.has_value();
}

std::optional<std::string> SourceFinder::FindIn(const std::string& folder, std::string_view name, SourceKind kind) {
  const std::string path = Below(folder, name);
  const auto endings = EndingsOf(kind);
  const std::string_view ending = EndingOf(name);
  const bool known = std::any_of(endings.begin(), endings.end(), [&](std::string_view candidate) {
    return core::EqualIgnoringCase(candidate, ending);
  });
  if (known) {
    if (auto found = m_look.FindFile(path)) return found;
  }
  if (!known) {
    for (const std::string_view other : endings) {
      if (auto found = m_look.FindFile(path + std::string(other))) return found;
    }
  }
  if (!ending.empty()) {
    const std::string stem = path.substr(0, path.size() - ending.size());
    for (const std::string_view other : endings) {
      if (auto found = m_look.FindFile(stem + std::string(other))) return found;
    }
  }
  return known ? std::nullopt : m_look.FindFile(path);
}

std::vector<std::string> SourceFinder::FoldersToSearch() const {
  std::vector<std::string> folders = {m_stack.back()};
  const auto add = [&](const std::string& folder) {
    if (std::find(folders.begin(), folders.end(), folder) == folders.end()) folders.push_back(folder);
  };
  for (const std::string& folder : m_more) add(folder);
  // Deeper stacks than these come from no person.
  for (size_t i = m_stack.size(); i-- > 0 && folders.size() < 64;) add(m_stack[i]);
  add(m_scriptFolder);
  return folders;
}

SourceFinder::Result SourceFinder::Find(std::string_view name, SourceKind kind) {
  Result result;
  const std::string_view last = core::LastComponent(name);
  if (last.empty()) return result;
  const auto folders = FoldersToSearch();
  for (const std::string& folder : folders) {
    if ((result.Path = FindIn(folder, name, kind))) return result;
    if (IsAbsolute(name)) break;
  }
  NearName near(last);
  NearName nearStem(last.substr(0, last.size() - EndingOf(last).size()));
  const std::string_view folderPart = core::DirectoryWithSeparator(name);
  const auto folder = m_look.FindFolder(Below(m_stack.back(), folderPart.empty() ? "." : folderPart));
  const auto endings = EndingsOf(kind);
  if (folder) {
    for (const std::string& entry : m_look.Names(*folder)) {
      const std::string_view ending = EndingOf(entry);
      const bool fits = std::any_of(endings.begin(), endings.end(), [&](std::string_view candidate) {
        return core::EqualIgnoringCase(candidate, ending);
      });
      if (!fits) continue;
      near.Offer(entry);
      nearStem.Offer(std::string_view(entry).substr(0, entry.size() - ending.size()));
    }
  }
  result.Nearest = near.Best().empty() ? nearStem.Best() : near.Best();
  return result;
}

std::optional<std::string> SourceFinder::FindElsewhere(std::string_view name, SourceKind kind) {
  // A folder that is not here, another computer's or one above the script's: the last folders of it may be.
  const auto folders = FoldersToSearch();
  for (std::string_view rest = BehindFolder(LastParts(name)); !rest.empty(); rest = BehindFolder(rest)) {
    for (const std::string& folder : folders) {
      if (auto found = FindIn(folder, rest, kind)) return found;
    }
  }
  const std::string_view last = core::LastComponent(name);
  return last.empty() || m_looksBelow++ >= MostLooksBelow ? std::nullopt : FindBelow(last, kind);
}

/// The file of that name in a folder below the script's: the nearest, of equally near ones the first by name.
std::optional<std::string> SourceFinder::FindBelow(std::string_view last, SourceKind kind) {
  if (m_below.empty()) {
    m_below.push_back({m_scriptFolder, 0});
    for (size_t i = 0; i < m_below.size() && m_below.size() < MostFoldersBelow; ++i) {
      const auto [folder, depth] = m_below[i];
      if (depth == DeepestFolder) continue;
      const auto& entries = m_look.Names(folder);
      for (size_t k = 0; k < std::min(entries.size(), MostEntries) && m_below.size() < MostFoldersBelow; ++k) {
        const std::string& entry = entries[k];
        if (entry.find('.') != std::string::npos) continue;
        if (const auto found = FolderAt(folder, entry)) m_below.push_back({*found, depth + 1});
      }
    }
  }
  for (size_t i = 1; i < m_below.size(); ++i) {
    if (auto found = FindIn(m_below[i].first, last, kind)) return found;
  }
  return std::nullopt;
}

std::string SourceFinder::ShownFolder() const {
  std::string_view shown = m_stack.back();
  if (shown == m_scriptFolder) return "the script's folder";
  if (shown.starts_with(m_scriptFolder)) shown.remove_prefix(m_scriptFolder.size());
  while (shown.starts_with("./")) shown.remove_prefix(2);
  return shown.empty() ? "the script's folder" : std::string(shown);
}

std::string SourceFinder::KeyOf(std::string_view name) const {
  std::string key = core::LowerAscii(Below(m_stack.back(), name));
  return key.substr(0, key.size() - EndingOf(key).size());
}

}  // namespace tarnwick::qc

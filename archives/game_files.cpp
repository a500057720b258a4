#include "archives/game_files.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "archives/archive_name.h"
#include "archives/folded_text.h"
#include "core/paths.h"
#include "core/whole_path.h"

namespace tarnwick::archives {

namespace fs = std::filesystem;

namespace {

constexpr size_t LargestGameInfo = size_t{1} << 20;

std::string Joined(const std::string& folder, std::string_view name) {
  const bool slash = folder.ends_with('/') || folder.ends_with('\\');
  return folder + (slash ? "" : std::string(1, core::PathSeparator)) + std::string(name);
}

bool IsFolder(const std::string& path) {
  std::error_code error;
  return fs::is_directory(core::NativePath(path), error);
}

/// Whether `name` is pak01_dir.vpk, pak02_dir.vpk, ...
bool IsPakArchive(std::string_view name) {
  const std::string folded = FoldedText(name);
  return folded.size() == 13 && folded.starts_with("pak") && folded.ends_with("_dir.vpk") &&
         std::string_view(folded).substr(3, 2).find_first_not_of("0123456789") == std::string_view::npos &&
         folded.substr(3, 2) != "00";
}

/// The parts of split archives are no places of their own.
bool IsVpkPlace(std::string_view name) {
  const std::string folded = FoldedText(name);
  if (!folded.ends_with(".vpk")) return false;
  const std::string_view stem = std::string_view(folded).substr(0, folded.size() - 4);
  const size_t line = stem.find_last_of('_');
  return line == std::string_view::npos || stem.size() - line < 4 ||
         stem.find_first_not_of("0123456789", line + 1) != std::string_view::npos;
}

struct FoldedOrder {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const { return CompareFolded(a, b) < 0; }
};
using FoldedSet = std::set<std::string, FoldedOrder>;

/// The part of `name` up to the first slash behind `start`; whether there was one.
std::pair<std::string_view, bool> NextPart(std::string_view name, size_t start) {
  const size_t slash = name.find_first_of("/\\", start);
  return {name.substr(start, slash - start), slash != std::string_view::npos};
}

void ListArchive(const FileTable& files, const std::string& folder, FoldedSet& folders, FoldedSet& names) {
  for (const uint32_t file : files.FilesIn(folder, false)) names.emplace(files.LastPart(file));
  for (uint32_t i = 0; i < files.FolderCount(); ++i) {
    const std::string_view name = files.Folder(i);
    const size_t start = folder.empty() ? 0 : folder.size() + 1;
    if (name.size() <= start || !EqualFolded(name.substr(0, folder.size()), folder)) continue;
    if (start > 0 && Folded(name[folder.size()]) != '/') continue;
    folders.emplace(NextPart(name, start).first);
  }
}

/// `way` has the folders that are being looked into, as they really are: a link may lead back to one of them.
void FilesBelow(const LooseFolder& place, const std::string& folder, bool below, std::vector<fs::path>& way,
                FoldedSet& names) {
  constexpr size_t MostLevels = 64, MostUnknown = 16;
  std::error_code error;
  const fs::path real = core::RealPath(core::NativePath(Joined(place.Path(), folder)), error);
  // A name in another case than the folder's own leads nowhere by itself; then only the depth ends a circle.
  if (way.size() > (error ? MostUnknown : MostLevels)) return;
  if (!error && std::find(way.begin(), way.end(), real) != way.end()) return;
  way.push_back(real);
  for (const LooseFolder::Entry& entry : place.List(folder)) {
    const std::string name = folder.empty() ? entry.Name : folder + '/' + entry.Name;
    if (!entry.IsFolder) {
      names.insert(name);
    } else if (below) {
      FilesBelow(place, name, below, way, names);
    }
  }
  way.pop_back();
}

}  // namespace

std::unique_ptr<GameFiles> GameFiles::Open(const std::string& gameDirectory, core::TroubleSink& sink,
                                           std::string& reason) {
  const std::string path = Joined(gameDirectory, "gameinfo.txt");
  const std::string existing = core::FindIgnoringCase(path).value_or(path);
  std::error_code error;
  const uint64_t size = fs::file_size(core::NativePath(existing), error);
  if (!error && size > LargestGameInfo) {
    reason = path + ": it is larger than 1 MiB";
    return nullptr;
  }
  const auto image = core::FileImage::Read(existing, &reason);
  std::optional<std::vector<SearchPath>> paths;
  if (image) {
    const std::string_view text(reinterpret_cast<const char*>(image->Bytes().data()), image->Bytes().size());
    paths = ReadSearchPaths(text, gameDirectory, reason);
  }
  if (!paths) {
    reason = path + ": " + reason;
    return nullptr;
  }
  return Open(*paths, sink);
}

std::unique_ptr<GameFiles> GameFiles::Open(const std::vector<SearchPath>& paths, core::TroubleSink& sink) {
  std::unique_ptr<GameFiles> files(new GameFiles);
  for (const SearchPath& path : paths) {
    if (path.What == SearchPath::Kind::AllBelow) {
      files->AddAllBelow(path.Path, sink);
    } else if (HasArchiveExtension(path.Path) && !IsFolder(path.Path)) {
      files->AddArchive(DirectoryFileOf(path.Path), sink);
    } else {
      files->AddFolder(path.Path, sink);
    }
  }
  return files;
}

bool GameFiles::IsNew(const std::string& path) {
  std::error_code error;
  const std::string known = core::PathText(core::RealPathOfNew(core::NativePath(path), error));
  if (std::find(m_known.begin(), m_known.end(), known) != m_known.end()) return false;
  m_known.push_back(known);
  return true;
}

void GameFiles::AddArchive(const std::string& path, core::TroubleSink& sink) {
  const auto existing = core::FindIgnoringCase(path);
  if (!existing || !IsNew(*existing)) return;
  std::string reason;
  auto archive = Archive::Open(*existing, reason);
  if (archive == nullptr) {
    sink.Tell({.Level = core::Severity::Warning,
               .Kind = core::TroubleKind::Damaged,
               .File = *existing,
               .Text = *existing + ": " + reason + "; its files are not found"});
    return;
  }
  m_places.emplace_back(std::move(archive));
}

void GameFiles::AddFolder(const std::string& path, core::TroubleSink& sink) {
  if (!IsFolder(path) || !IsNew(path)) return;
  auto folder = std::make_unique<LooseFolder>(path);
  for (const LooseFolder::Entry& entry : folder->List({})) {  // sorted: pak01 before pak02
    if (!entry.IsFolder && IsPakArchive(entry.Name)) AddArchive(Joined(path, entry.Name), sink);
  }
  m_places.emplace_back(std::move(folder));
}

void GameFiles::AddAllBelow(const std::string& path, core::TroubleSink& sink) {
  for (const LooseFolder::Entry& entry : LooseFolder(path).List({})) {
    if (entry.IsFolder) {
      AddFolder(Joined(path, entry.Name), sink);
    } else if (IsVpkPlace(entry.Name)) {
      AddArchive(Joined(path, entry.Name), sink);
    }
  }
}

std::optional<FoundFile> GameFiles::Find(std::string_view name) const {
  const std::string plain = PlainName(name);
  for (const Place& place : m_places) {
    if (const auto* archive = std::get_if<std::shared_ptr<const Archive>>(&place)) {
      if (const auto file = (*archive)->Files().Find(plain)) {
        return FoundFile{archive->get(), *file, (*archive)->FullName(*file)};
      }
    } else if (auto path = std::get<std::unique_ptr<LooseFolder>>(place)->Find(plain)) {
      return FoundFile{nullptr, 0, std::move(*path)};
    }
  }
  return std::nullopt;
}

std::optional<core::FileImage> GameFiles::Read(std::string_view name, std::string& reason) const {
  const auto found = Find(name);
  if (!found) {
    reason = "no place of the game has it";
    return std::nullopt;
  }
  return found->InArchive != nullptr ? found->InArchive->Read(found->Number, reason)
                                     : core::FileImage::Read(found->Name, &reason);
}

GameFolder GameFiles::List(std::string_view folder) const {
  const std::string plain = PlainName(folder);
  FoldedSet folders;
  FoldedSet names;
  for (const Place& place : m_places) {
    if (const auto* archive = std::get_if<std::shared_ptr<const Archive>>(&place)) {
      ListArchive((*archive)->Files(), plain, folders, names);
      continue;
    }
    for (const LooseFolder::Entry& entry : std::get<std::unique_ptr<LooseFolder>>(place)->List(plain)) {
      (entry.IsFolder ? folders : names).insert(entry.Name);
    }
  }
  return {{folders.begin(), folders.end()}, {names.begin(), names.end()}};
}

std::vector<std::string> GameFiles::FilesIn(std::string_view folder, bool below) const {
  const std::string plain = PlainName(folder);
  FoldedSet names;
  for (const Place& place : m_places) {
    if (const auto* archive = std::get_if<std::shared_ptr<const Archive>>(&place)) {
      const FileTable& files = (*archive)->Files();
      for (const uint32_t file : files.FilesIn(plain, below)) names.insert(files.Name(file));
    } else {
      std::vector<fs::path> way;
      FilesBelow(*std::get<std::unique_ptr<LooseFolder>>(place), plain, below, way, names);
    }
  }
  return {names.begin(), names.end()};
}

std::vector<std::string> GameFiles::Places() const {
  std::vector<std::string> paths;
  for (const Place& place : m_places) {
    const auto* archive = std::get_if<std::shared_ptr<const Archive>>(&place);
    paths.push_back(archive != nullptr ? (*archive)->Path() : std::get<std::unique_ptr<LooseFolder>>(place)->Path());
  }
  return paths;
}

std::vector<GamePlace> GameFiles::AllPlaces() const {
  std::vector<GamePlace> places;
  for (const Place& place : m_places) {
    const auto* archive = std::get_if<std::shared_ptr<const Archive>>(&place);
    places.push_back(archive != nullptr ? GamePlace{(*archive)->Path(), *archive}
                                        : GamePlace{std::get<std::unique_ptr<LooseFolder>>(place)->Path(), nullptr});
  }
  return places;
}

void GameFiles::Refresh() {
  for (Place& place : m_places) {
    if (const auto* folder = std::get_if<std::unique_ptr<LooseFolder>>(&place)) {
      (*folder)->Refresh();
      continue;
    }
    auto& archive = std::get<std::shared_ptr<const Archive>>(place);
    if (!archive->HasChanged()) continue;
    std::string ignored;
    if (auto fresh = Archive::Open(archive->Path(), ignored); fresh != nullptr) archive = std::move(fresh);
  }
}

}  // namespace tarnwick::archives

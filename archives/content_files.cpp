#include "archives/content_files.h"

#include <algorithm>
#include <filesystem>

#include "archives/folded_text.h"
#include "archives/name_pattern.h"
#include "core/paths.h"
#include "core/same_folder.h"

namespace tarnwick::archives {

namespace {

using Where = ContentName::Place;

bool HasExtension(std::string_view name, std::string_view extension) {
  return name.size() >= extension.size() &&
         core::EqualIgnoringCase(name.substr(name.size() - extension.size()), extension);
}

bool IsPattern(std::string_view name) {
  return name.find_first_of("*?") != std::string_view::npos;
}

/// The folder of a pattern, as far as it has no wildcard; of any other name the name itself.
std::string FixedFolder(std::string_view name) {
  if (!IsPattern(name)) return PlainName(name);
  const size_t slash = name.substr(0, name.find_first_of("*?")).find_last_of("/\\");
  return slash == std::string_view::npos ? std::string() : PlainName(name.substr(0, slash));
}

/// Adds a file of the folder `folder` if it is meant.
void AddMeant(std::vector<ListedFile>& list, const std::string& start, const std::string& name,
              const std::string& folder, std::string_view pattern, std::string_view extension) {
  if (!HasExtension(name, extension) || (IsPattern(pattern) && !MatchesPattern(name, pattern))) return;
  // The archive's own name may begin with slashes or have doubled ones.
  const std::string plain = PlainName(name);
  const size_t below = folder.empty() ? 0 : folder.size() + 1;
  list.push_back({start + name, plain.size() > below ? plain.substr(below) : plain});
}

/// What stands before the last folder `models` of a name; nothing if it has none.
std::optional<std::string> RootOf(const std::string& name) {
  const std::string folded = '/' + FoldedText(name);
  const size_t at = folded.rfind("/models/");
  return at == std::string::npos ? std::nullopt : std::optional(name.substr(0, at));
}

/// The folder of a file of the disk, as one text however it is written.
std::string FolderKey(const std::string& path) {
  const std::string_view folder = core::DirectoryWithSeparator(path);
#ifdef _WIN32
  return FoldedText(folder);
#else
  return std::string(folder);
#endif
}

/// The folders beside a file of the disk in which what its game has may lie: what its folder `models` lies in, and its
/// own folder.
std::vector<std::string> LooseRoots(const std::string& path) {
  std::error_code error;
  const std::filesystem::path whole = std::filesystem::absolute(core::NativePath(path), error).lexically_normal();
  const std::string text = error ? path : core::PathText(whole);
  std::vector<std::string> roots;
  if (auto root = RootOf(text)) roots.push_back(std::move(*root));
  const std::string own(core::DirectoryWithSeparator(text));
  if (std::find(roots.begin(), roots.end(), own) == roots.end()) roots.push_back(own);
  return roots;
}

}  // namespace

std::shared_ptr<const Archive> ContentFiles::OpenArchive(const std::string& path, std::string& reason) const {
  const std::lock_guard lock(m_lock);
  const auto known = m_archives.find(path);
  if (known != m_archives.end() && !known->second->HasChanged()) return known->second;
  auto archive = Archive::Open(path, reason);
  if (archive != nullptr) m_archives.insert_or_assign(path, archive);
  return archive;
}

const GameFiles* ContentFiles::Game(std::string& reason) const {
  const std::lock_guard lock(m_lock);
  if (!m_gameTried) {
    m_gameTried = true;
    if (m_gameDirectory.empty()) {
      m_gameReason = "no game directory is known";
    } else {
      m_game = GameFiles::Open(m_gameDirectory, m_sink, m_gameReason);
      // What a name leads to in one of the game's archives is read from the one that is open.
      for (const GamePlace& place : m_game != nullptr ? m_game->AllPlaces() : std::vector<GamePlace>()) {
        if (place.InArchive != nullptr) m_archives.emplace(place.Path, place.InArchive);
      }
    }
  }
  if (m_game == nullptr) reason = m_gameReason;
  return m_game.get();
}

/// Where a file is: in an archive, or on the disk.
struct ContentFiles::Place {
  std::shared_ptr<const Archive> Kept = {};
  const Archive* InArchive = nullptr;
  uint32_t Number = 0;
  std::string Path = {};  // on the disk

  std::string Name() const { return InArchive != nullptr ? InArchive->FullName(Number) : Path; }
};

std::optional<ContentFiles::Place> ContentFiles::Find(const std::string& name, std::string& reason) const {
  const ContentName content = ReadContentName(name);
  if (content.Where == Where::Disk) return Place{.Path = name};
  if (content.Where == Where::Game) {
    const GameFiles* const game = Game(reason);
    if (game == nullptr) return std::nullopt;
    auto found = game->Find(content.Inside);
    if (!found) {
      reason = "no place of the game has it";
      return std::nullopt;
    }
    if (found->InArchive != nullptr) return Place{.InArchive = found->InArchive, .Number = found->Number};
    const std::string inside = PlainName(content.Inside);
    const std::lock_guard lock(m_lock);
    m_gameFolders.insert_or_assign(FolderKey(found->Name), std::string(core::DirectoryWithSeparator(inside)));
    return Place{.Path = std::move(found->Name)};
  }
  auto archive = OpenArchive(content.Path, reason);
  if (archive == nullptr) {
    reason = content.Path + ": " + reason;
    return std::nullopt;
  }
  const auto file = archive->Find(content.Inside);
  if (!file) {
    reason = content.Inside.empty() ? "it names no file in the archive" : "the archive has no such file";
    return std::nullopt;
  }
  return Place{.Kept = archive, .InArchive = archive.get(), .Number = *file};
}

std::optional<core::FileImage> ContentFiles::Read(const std::string& name, std::string* reason) const {
  std::string ignored;
  std::string& why = reason != nullptr ? *reason : ignored;
  const auto place = Find(name, why);
  if (!place) return std::nullopt;
  return place->InArchive != nullptr ? place->InArchive->Read(place->Number, why)
                                     : core::FileImage::Read(place->Path, &why);
}

std::optional<core::FileImage> ContentFiles::ReadIf(const std::string& name, size_t start, const core::WantsFile& wants,
                                                    std::string* reason) const {
  std::string ignored;
  const auto place = Find(name, reason != nullptr ? *reason : ignored);
  if (!place) return std::nullopt;
  return place->InArchive != nullptr ? FileSource::ReadIf(name, start, wants, reason)
                                     : core::FileImage::ReadIf(place->Path, start, wants, reason);
}

bool ContentFiles::ReadStart(const std::string& name, std::span<std::byte> out) const {
  std::string ignored;
  const auto place = Find(name, ignored);
  if (!place) return false;
  return place->InArchive != nullptr ? place->InArchive->ReadStart(place->Number, out)
                                     : core::DiskFiles().ReadStart(place->Path, out);
}

bool ContentFiles::Holds(const std::string& name) const {
  std::string ignored;
  const auto place = Find(name, ignored);
  return place && (place->InArchive != nullptr || core::FileExists(place->Path));
}

std::optional<std::string> ContentFiles::FindBeside(const std::string& name) const {
  std::string ignored;
  const auto place = Find(name, ignored);
  if (!place) return std::nullopt;
  return place->InArchive != nullptr ? place->Name() : m_names.Find(place->Path);
}

std::optional<std::string> ContentFiles::FindElsewhere(const std::string& name) const {
  const ContentName content = ReadContentName(name);
  std::string inside = content.Inside;
  if (m_gameDirectory.empty() || content.Where == Where::Game) return std::nullopt;
  if (content.Where == Where::Disk) {
    const std::lock_guard lock(m_lock);
    const auto folder = m_gameFolders.find(FolderKey(name));
    if (folder == m_gameFolders.end()) return std::nullopt;
    inside = folder->second + std::string(core::LastComponent(name));
  }
  std::string ignored;
  const auto place = Find("game:" + inside, ignored);
  return place ? std::optional(place->Name()) : std::nullopt;
}

const LooseFolder& ContentFiles::Loose(const std::string& path) const {
  const std::lock_guard lock(m_lock);
  auto& folder = m_loose[path];
  if (folder == nullptr) folder = std::make_unique<LooseFolder>(path);
  return *folder;
}

void ContentFiles::Refresh() {
  const std::lock_guard lock(m_lock);
  if (m_game != nullptr) m_game->Refresh();
  for (const auto& [path, folder] : m_loose) folder->Refresh();
}

/// A place in which files of a game are looked for.
struct ContentFiles::Root {
  enum class Kind { Game, Archive, Folder };
  Kind Is = Kind::Folder;
  std::string Path = {};
  std::string Start = {};  // what stands before a name in an archive
};

/// Whether the archive or folder at `path` is one of the game's places.
bool ContentFiles::IsOfGame(const std::string& path) const {
  {
    const std::lock_guard lock(m_lock);
    const auto known = m_isOfGame.find(path);
    if (known != m_isOfGame.end()) return known->second;
  }
  std::string ignored;
  const GameFiles* const game = Game(ignored);
  bool isOfGame = false;
  for (const std::string& place : game != nullptr ? game->Places() : std::vector<std::string>{m_gameDirectory}) {
    isOfGame = isOfGame || core::IsSameFolder(place, path);
  }
  const std::lock_guard lock(m_lock);
  m_isOfGame.emplace(path, isOfGame);
  return isOfGame;
}

std::vector<ContentFiles::Root> ContentFiles::RootsFor(const std::string& owner) const {
  std::string ignored;
  const std::string name = Resolve(owner, ignored).value_or(owner);
  const ContentName content = ReadContentName(name);
  std::vector<Root> roots;
  if (content.Where == Where::Archive) {
    roots.push_back({Root::Kind::Archive, content.Path, RootOf(content.Inside).value_or("")});
  } else if (content.Where == Where::Disk && !name.empty()) {
    for (std::string& path : LooseRoots(name)) roots.push_back({Root::Kind::Folder, std::move(path)});
  }
  if (m_gameDirectory.empty()) return roots;
  const bool isOfGame = !roots.empty() && IsOfGame(roots.front().Path);
  roots.insert(isOfGame ? roots.begin() : roots.end(), {Root::Kind::Game, m_gameDirectory});
  // The game looks there itself.
  std::erase_if(roots, [this](const Root& root) { return root.Is == Root::Kind::Folder && IsOfGame(root.Path); });
  return roots;
}

std::optional<std::string> ContentFiles::FindGameFile(const std::string& owner, const std::string& inside) const {
  std::string reason;
  for (const Root& root : RootsFor(owner)) {
    if (root.Is == Root::Kind::Folder || (root.Is == Root::Kind::Game && Game(reason) == nullptr)) {
      if (auto path = Loose(root.Path).Find(PlainName(inside))) return path;
    } else {
      const std::string start = root.Is == Root::Kind::Game ? "game:" : root.Path + ':' + root.Start;
      if (const auto place = Find(start + inside, reason)) return place->Name();
    }
  }
  return std::nullopt;
}

std::string ContentFiles::PlacesFor(const std::string& owner) const {
  std::string places;
  for (const Root& root : RootsFor(owner)) {
    if (!places.empty()) places += ", ";
    places += (root.Is == Root::Kind::Game ? "the game in " : "") + root.Path;
  }
  return places;
}

std::vector<std::string> ContentFiles::TriedFor(const std::string& owner, const std::string& inside) const {
  std::vector<std::string> tried;
  const auto below = [&](const std::string& place) {
    const bool ends = place.ends_with('/') || place.ends_with('\\');
    tried.push_back(place +
                    (ends                         ? ""
                     : HasArchiveExtension(place) ? ":"
                                                  : std::string(1, core::PathSeparator)) +
                    PlainName(inside));
  };
  std::string ignored;
  for (const Root& root : RootsFor(owner)) {
    const GameFiles* const game = root.Is == Root::Kind::Game ? Game(ignored) : nullptr;
    if (root.Is == Root::Kind::Archive) {
      tried.push_back(root.Path + ':' + root.Start + inside);
    } else if (game == nullptr) {
      below(root.Path);
    } else {
      for (const std::string& place : game->Places()) below(place);
    }
  }
  return tried;
}

std::optional<std::string> ContentFiles::Resolve(const std::string& name, std::string& reason) const {
  const auto place = Find(name, reason);
  return place ? std::optional(place->Name()) : std::nullopt;
}

std::optional<std::vector<ListedFile>> ContentFiles::FilesIn(const std::string& name, std::string_view extension,
                                                             bool below, std::string& reason) const {
  reason.clear();
  const ContentName content = ReadContentName(name);
  const bool whole = content.Where == Where::Disk && HasArchiveExtension(name);
  if (content.Where == Where::Disk && !whole) return std::nullopt;
  const bool pattern = IsPattern(content.Inside);
  const std::string folder = FixedFolder(content.Inside);
  std::vector<ListedFile> list;
  if (content.Where == Where::Game) {
    const GameFiles* const game = Game(reason);
    if (game == nullptr || game->Find(content.Inside)) return std::nullopt;
    for (const std::string& file : game->FilesIn(folder, below || pattern)) {
      AddMeant(list, "game:", file, folder, content.Inside, extension);
    }
  } else {
    const auto archive = OpenArchive(whole ? DirectoryFileOf(name) : content.Path, reason);
    if (archive == nullptr || archive->Find(content.Inside)) return std::nullopt;
    const FileTable& files = archive->Files();
    std::vector<bool> wanted(files.Count());
    for (const uint32_t file : files.FilesIn(folder, below || pattern)) wanted[file] = files.IsFirst(file);
    for (const uint32_t file : files.SortedByName()) {
      if (!wanted[file]) continue;
      AddMeant(list, archive->Path() + ':', files.Name(file), folder, content.Inside, extension);
    }
  }
  // What has the ending of a file and is no folder is a file that is not there.
  const bool looksLikeFile = !pattern && !extension.empty() && HasExtension(content.Inside, extension);
  if (list.empty() && looksLikeFile) return std::nullopt;
  return list;
}

}  // namespace tarnwick::archives

#include "archives/content_files.h"

#include <algorithm>
#include <filesystem>

#include "archives/folded_text.h"
#include "archives/name_pattern.h"
#include "core/paths.h"

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
    m_gameFolders.insert_or_assign(std::string(core::DirectoryWithSeparator(found->Name)),
                                   std::string(core::DirectoryWithSeparator(inside)));
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
  return place->InArchive != nullptr ? place->Name() : core::FindIgnoringCase(place->Path);
}

std::optional<std::string> ContentFiles::FindElsewhere(const std::string& name) const {
  const ContentName content = ReadContentName(name);
  std::string inside = content.Inside;
  if (m_gameDirectory.empty() || content.Where == Where::Game) return std::nullopt;
  if (content.Where == Where::Disk) {
    const std::lock_guard lock(m_lock);
    const auto folder = m_gameFolders.find(std::string(core::DirectoryWithSeparator(name)));
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
  if (folder == nullptr) folder = std::make_unique<const LooseFolder>(path);
  return *folder;
}

std::optional<std::string> ContentFiles::FindGameFile(const std::string& owner, const std::string& inside) const {
  std::string ignored;
  const std::string name = Resolve(owner, ignored).value_or(owner);
  const ContentName content = ReadContentName(name);
  if (content.Where == Where::Archive) {
    if (const auto place = Find(content.Path + ':' + RootOf(content.Inside).value_or("") + inside, ignored)) {
      return place->Name();
    }
  } else if (content.Where == Where::Disk) {
    for (const std::string& root : LooseRoots(name)) {
      if (auto path = Loose(root).Find(PlainName(inside))) return path;
    }
  }
  if (m_gameDirectory.empty()) return std::nullopt;
  const auto place = Find("game:" + inside, ignored);
  return place ? std::optional(place->Name()) : std::nullopt;
}

std::string ContentFiles::PlacesFor(const std::string& owner) const {
  std::string ignored;
  const std::string name = Resolve(owner, ignored).value_or(owner);
  const ContentName content = ReadContentName(name);
  std::string places;
  if (content.Where == Where::Archive) {
    places = content.Path;
  } else if (content.Where == Where::Disk) {
    for (const std::string& root : LooseRoots(name)) places += (places.empty() ? "" : ", ") + root;
  }
  if (!m_gameDirectory.empty()) places += (places.empty() ? "" : ", ") + ("the game in " + m_gameDirectory);
  return places;
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

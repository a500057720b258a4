#include "archives/content_files.h"

#include "archives/folded_text.h"
#include "core/paths.h"

namespace tarnwick::archives {

namespace {

using Where = ContentName::Place;

bool HasExtension(std::string_view name, std::string_view extension) {
  return name.size() >= extension.size() &&
         core::EqualIgnoringCase(name.substr(name.size() - extension.size()), extension);
}

/// Keeps of `names` those with the extension and puts `start` before each.
std::vector<std::string> Chosen(const std::vector<std::string>& names, std::string_view extension,
                                const std::string& start) {
  std::vector<std::string> chosen;
  for (const std::string& name : names) {
    if (HasExtension(name, extension)) chosen.push_back(start + name);
  }
  return chosen;
}

}  // namespace

std::shared_ptr<const Archive> ContentFiles::OpenArchive(const std::string& path, std::string& reason) const {
  const std::lock_guard lock(m_lock);
  const auto known = m_archives.find(path);
  if (known != m_archives.end()) return known->second;
  auto archive = Archive::Open(path, reason);
  if (archive != nullptr) m_archives.emplace(path, archive);
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

std::optional<core::FileImage> ContentFiles::Read(const std::string& name, std::string* reason) const {
  std::string ignored;
  std::string& why = reason != nullptr ? *reason : ignored;
  const ContentName content = ReadContentName(name);
  if (content.Where == Where::Disk) return core::FileImage::Read(name, &why);
  if (content.Where == Where::Game) {
    const GameFiles* const game = Game(why);
    return game != nullptr ? game->Read(content.Inside, why) : std::nullopt;
  }
  const auto archive = OpenArchive(content.Path, why);
  if (archive == nullptr) {
    why = content.Path + ": " + why;
    return std::nullopt;
  }
  const auto file = archive->Find(content.Inside);
  if (!file) {
    why = content.Inside.empty() ? "it names no file in the archive" : "the archive has no such file";
    return std::nullopt;
  }
  return archive->Read(*file, why);
}

std::optional<std::string> ContentFiles::FindCompanion(const std::string& name) const {
  const ContentName content = ReadContentName(name);
  std::string ignored;
  if (content.Where == Where::Disk) return core::FindIgnoringCase(name);
  if (content.Where == Where::Archive) {
    const auto archive = OpenArchive(content.Path, ignored);
    const auto file = archive != nullptr ? archive->Find(content.Inside) : std::nullopt;
    if (file) return archive->FullName(*file);
    if (m_gameDirectory.empty()) return std::nullopt;
  }
  const GameFiles* const game = Game(ignored);
  const auto found = game != nullptr ? game->Find(content.Inside) : std::nullopt;
  return found ? std::optional(found->Name) : std::nullopt;
}

std::optional<std::vector<std::string>> ContentFiles::FilesIn(const std::string& name, std::string_view extension,
                                                              bool below, std::string& reason) const {
  reason.clear();
  const ContentName content = ReadContentName(name);
  if (content.Where == Where::Game) {
    const GameFiles* const game = Game(reason);
    if (game == nullptr || game->Find(content.Inside)) return std::nullopt;
    return Chosen(game->FilesIn(content.Inside, below), extension, "game:");
  }
  const bool whole = content.Where == Where::Disk && HasArchiveExtension(name);
  if (content.Where == Where::Disk && !whole) return std::nullopt;
  const auto archive = OpenArchive(whole ? DirectoryFileOf(name) : content.Path, reason);
  if (archive == nullptr || archive->Find(content.Inside)) return std::nullopt;
  const FileTable& files = archive->Files();
  std::vector<bool> wanted(files.Count());
  for (const uint32_t file : files.FilesIn(PlainName(content.Inside), below)) wanted[file] = files.IsFirst(file);
  std::vector<std::string> names;
  for (const uint32_t file : files.SortedByName()) {
    if (wanted[file] && HasExtension(files.LastPart(file), extension)) names.push_back(archive->FullName(file));
  }
  return names;
}

}  // namespace tarnwick::archives

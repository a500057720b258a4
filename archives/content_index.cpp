#include "archives/content_index.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "archives/folded_text.h"
#include "archives/name_pattern.h"
#include "core/folder_reader.h"
#include "core/paths.h"
#include "core/whole_path.h"

namespace tarnwick::archives {

namespace fs = std::filesystem;

namespace {

constexpr int MostLevels = 64;        // of folders on the disk
constexpr uint32_t StopEvery = 4096;  // files between two looks at the stop token

std::string_view ExtensionOf(std::string_view lastPart) {
  const size_t dot = lastPart.find_last_of('.');
  return dot == std::string_view::npos ? std::string_view() : lastPart.substr(dot);
}

/// Reads the files below a folder of the disk into a table.
class FolderWalk {
 public:
  FolderWalk(FileTable& table, const std::stop_token& stop) : m_table(table), m_stop(stop) {}

  void Walk(const fs::path& path, const std::string& name) {
    std::error_code error;
    const fs::path real = core::RealPath(path, error);
    // A link may lead back to where the walk comes from.
    if (error || m_way.size() >= MostLevels || std::find(m_way.begin(), m_way.end(), real) != m_way.end()) return;
    m_way.push_back(real);
    const auto folder = m_table.AddFolder(name);
    core::FolderReader entries(path);
    while (folder && entries.Next() && !m_stop.stop_requested()) {
      const std::string part = entries.Name();
      if (entries.IsFolder()) {
        std::string below = name;
        if (!below.empty()) below += '/';
        Walk(entries.Path(), below += part);
      } else if (entries.IsFile()) {
        m_table.Add(*folder, part, {}, {.Size = entries.Size()});
      }
    }
    m_way.pop_back();
  }

 private:
  FileTable& m_table;
  const std::stop_token& m_stop;
  std::vector<fs::path> m_way;
};

bool BeginsFolded(std::string_view text, std::string_view start) {
  return text.size() >= start.size() && EqualFolded(text.substr(0, start.size()), start);
}

std::vector<std::string> WordsOf(std::string_view text) {
  constexpr std::string_view Blanks = " \t\r\n";
  std::vector<std::string> words;
  while (true) {
    const size_t begin = text.find_first_not_of(Blanks);
    if (begin == std::string_view::npos) return words;
    const size_t end = std::min(text.find_first_of(Blanks, begin), text.size());
    words.push_back(FoldedText(text.substr(begin, end - begin)));
    text.remove_prefix(end);
  }
}

}  // namespace

ContentKind KindOf(std::string_view name) {
  const std::string_view extension = ExtensionOf(name);
  if (core::EqualIgnoringCase(extension, ".mdl")) return ContentKind::Model;
  if (core::EqualIgnoringCase(extension, ".vtf")) return ContentKind::Texture;
  if (core::EqualIgnoringCase(extension, ".vmt")) return ContentKind::Material;
  return ContentKind::Other;
}

std::shared_ptr<const ContentIndex> ContentIndex::Of(std::vector<GamePlace> places, const std::stop_token& stop) {
  std::shared_ptr<ContentIndex> index(new ContentIndex);
  index->m_places = std::move(places);
  return index->Fill(stop) && index->Order(stop) ? index : nullptr;
}

const FileTable& ContentIndex::Table(uint32_t place) const {
  return m_loose[place] != nullptr ? *m_loose[place] : m_places[place].InArchive->Files();
}

bool ContentIndex::Fill(const std::stop_token& stop) {
  for (const GamePlace& place : m_places) {
    auto& table = m_loose.emplace_back();
    if (place.InArchive != nullptr) continue;
    table = std::make_unique<FileTable>();
    FolderWalk(*table, stop).Walk(core::NativePath(place.Path), {});
    table->Shrink();
  }
  return !stop.stop_requested();
}

bool ContentIndex::Order(const std::stop_token& stop) {
  // Folders first, over all places: a file is then sorted among those of its folder alone.
  std::vector<std::vector<std::string>> names(m_places.size());
  for (uint32_t place = 0; place < m_places.size(); ++place) {
    const FileTable& table = Table(place);
    names[place].reserve(table.FolderCount());
    for (uint32_t i = 0; i < table.FolderCount(); ++i) names[place].push_back(PlainName(table.Folder(i)));
    m_folders.insert(m_folders.end(), names[place].begin(), names[place].end());
  }
  const auto before = [](std::string_view a, std::string_view b) { return CompareFolded(a, b) < 0; };
  std::stable_sort(m_folders.begin(), m_folders.end(), before);
  m_folders.erase(std::unique(m_folders.begin(), m_folders.end(), EqualFolded), m_folders.end());
  if (stop.stop_requested()) return false;

  std::vector<std::vector<uint32_t>> numbers(m_places.size());
  m_firstFiles.assign(m_folders.size() + 1, 0);
  for (uint32_t place = 0; place < m_places.size(); ++place) {
    for (const std::string& name : names[place]) {
      numbers[place].push_back(static_cast<uint32_t>(
          std::lower_bound(m_folders.begin(), m_folders.end(), name, before) - m_folders.begin()));
    }
    const FileTable& table = Table(place);
    for (uint32_t i = 0; i < table.Count(); ++i) ++m_firstFiles[numbers[place][table.FolderOf(i)] + 1];
  }
  for (size_t i = 1; i < m_firstFiles.size(); ++i) m_firstFiles[i] += m_firstFiles[i - 1];
  m_files.resize(m_firstFiles.back());
  std::vector<uint32_t> next(m_firstFiles.begin(), m_firstFiles.end());
  for (uint32_t place = 0; place < m_places.size(); ++place) {
    const FileTable& table = Table(place);
    for (uint32_t i = 0; i < table.Count(); ++i) {
      const uint32_t folder = numbers[place][table.FolderOf(i)];
      m_files[next[folder]++] = {place, i, folder, KindOf(table.LastPart(i)), false, 0, 0};
    }
  }
  for (size_t folder = 0; folder < m_folders.size(); ++folder) {
    if (stop.stop_requested()) return false;
    const auto first = m_files.begin() + m_firstFiles[folder];
    const auto end = m_files.begin() + m_firstFiles[folder + 1];
    // What comes first was put there by place and number: that is what the game finds.
    const auto lastPart = [this](const File& file) { return Table(file.Place).LastPart(file.Number); };
    std::stable_sort(first, end, [&](const File& a, const File& b) { return before(lastPart(a), lastPart(b)); });
    for (auto file = first; file != end; ++file) {
      const std::string_view text = lastPart(*file);
      file->Text = m_text.size();
      file->TextSize = static_cast<uint16_t>(text.size());
      m_text.resize(m_text.size() + text.size());
      std::transform(text.begin(), text.end(), m_text.end() - static_cast<ptrdiff_t>(text.size()), archives::Folded);
      file->Hidden = file != first && EqualFolded(lastPart(*(file - 1)), lastPart(*file));
    }
  }
  return true;
}

std::string ContentIndex::Name(uint32_t file) const {
  return Table(m_files[file].Place).Name(m_files[file].Number);
}

std::string_view ContentIndex::LastPart(uint32_t file) const {
  return Table(m_files[file].Place).LastPart(m_files[file].Number);
}

uint64_t ContentIndex::Size(uint32_t file) const {
  return Table(m_files[file].Place).Place(m_files[file].Number).WholeSize();
}

std::string ContentIndex::FullName(uint32_t file) const {
  const GamePlace& place = m_places[m_files[file].Place];
  if (place.InArchive != nullptr) return place.InArchive->FullName(m_files[file].Number);
  const bool slash = place.Path.ends_with('/') || place.Path.ends_with('\\');
  return place.Path + (slash ? "" : std::string(1, core::PathSeparator)) + Name(file);
}

std::optional<uint32_t> ContentIndex::FolderNumber(std::string_view folder) const {
  const auto found = std::lower_bound(m_folders.begin(), m_folders.end(), folder,
                                      [](std::string_view a, std::string_view b) { return CompareFolded(a, b) < 0; });
  if (found == m_folders.end() || !EqualFolded(*found, folder)) return std::nullopt;
  return static_cast<uint32_t>(found - m_folders.begin());
}

ContentIndex::Range ContentIndex::FolderRange(std::string_view folder) const {
  const auto count = static_cast<uint32_t>(m_folders.size());
  if (folder.empty()) return {!m_folders.empty() && m_folders.front().empty() ? 1u : 0u, count};
  // All names with one beginning stand together.
  const std::string start = std::string(folder) + '/';
  const auto first = std::partition_point(m_folders.begin(), m_folders.end(),
                                          [&](const std::string& name) { return CompareFolded(name, start) < 0; });
  const auto end =
      std::partition_point(first, m_folders.end(), [&](const std::string& name) { return BeginsFolded(name, start); });
  return {static_cast<uint32_t>(first - m_folders.begin()), static_cast<uint32_t>(end - m_folders.begin())};
}

std::optional<uint32_t> ContentIndex::Find(std::string_view name, std::optional<uint32_t> place) const {
  const std::string plain = PlainName(name);
  const size_t slash = plain.find_last_of('/');
  const auto folder = FolderNumber(slash == std::string::npos ? std::string() : plain.substr(0, slash));
  if (!folder) return std::nullopt;
  const std::string_view last = std::string_view(plain).substr(slash == std::string::npos ? 0 : slash + 1);
  uint32_t low = m_firstFiles[*folder];
  uint32_t high = m_firstFiles[*folder + 1];
  const uint32_t end = high;
  while (low < high) {
    const uint32_t middle = low + (high - low) / 2;
    if (CompareFolded(LastPart(middle), last) < 0) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  for (; low < end && EqualFolded(LastPart(low), last); ++low) {
    if (!place || PlaceOf(low) == *place) return low;
  }
  return std::nullopt;
}

bool ContentIndex::Means(uint32_t file, const ContentQuery& query) const {
  const File& known = m_files[file];
  if (query.Kind && known.Kind != *query.Kind) return false;
  return query.Place ? known.Place == *query.Place : !known.Hidden;
}

std::vector<std::string> ContentIndex::FoldersIn(std::optional<uint32_t> place, std::string_view folder,
                                                 std::optional<ContentKind> kind, size_t most) const {
  const size_t start = folder.empty() ? 0 : folder.size() + 1;
  const ContentQuery query{.Place = place, .Kind = kind};
  std::vector<std::string> folders;
  const Range range = FolderRange(folder);
  for (uint32_t i = range.First; i < range.End && folders.size() < most;) {
    const std::string child = m_folders[i].substr(0, m_folders[i].find('/', start));
    // Folders of one child need not stand together: "a", "a-b", "a/c".
    const bool known = !folders.empty() && EqualFolded(folders.back(), child);
    bool has = known;
    uint32_t next = i;
    for (; next < range.End && BeginsFolded(m_folders[next], child) &&
           (m_folders[next].size() == child.size() || m_folders[next][child.size()] == '/');
         ++next) {
      for (uint32_t file = m_firstFiles[next]; !has && file < m_firstFiles[next + 1]; ++file) has = Means(file, query);
    }
    if (has && !known) folders.push_back(child);
    i = next;
  }
  std::sort(folders.begin(), folders.end(),
            [](std::string_view a, std::string_view b) { return CompareFolded(a, b) < 0; });
  folders.erase(std::unique(folders.begin(), folders.end(), EqualFolded), folders.end());
  return folders;
}

/// The words of a query. What a word finds in a folder's name is found out once for all its files.
class ContentIndex::WordFilter {
 public:
  explicit WordFilter(std::string_view text) : m_words(WordsOf(text)), m_inFolder(m_words.size()) {}

  bool HasWords() const { return !m_words.empty(); }

  void Enter(std::string_view folder) {
    m_whole = FoldedText(folder) + (folder.empty() ? "" : "/");
    for (size_t i = 0; i < m_words.size(); ++i) m_inFolder[i] = m_whole.find(m_words[i]) != std::string::npos;
  }

  /// How well a file of the folder with that folded last part fits, 0 for best; nothing if it does not.
  std::optional<uint8_t> Rank(std::string_view lastPart) const {
    bool allInLastPart = true;
    for (size_t i = 0; i < m_words.size(); ++i) {
      const std::string& word = m_words[i];
      if (word.find_first_of("*?") != std::string::npos) {
        if (!MatchesPattern(m_whole + std::string(lastPart), word)) return std::nullopt;
      } else if (lastPart.find(word) == std::string_view::npos) {
        allInLastPart = false;
        if (!m_inFolder[i] && !Crosses(word, lastPart)) return std::nullopt;
      }
    }
    if (!allInLastPart) return 3;
    const std::string& first = m_words.front();
    if (!lastPart.starts_with(first)) return 2;
    return lastPart.size() == first.size() || lastPart[first.size()] == '.' ? 0 : 1;
  }

 private:
  /// Whether the word begins in the folder's name and ends in the last part.
  bool Crosses(std::string_view word, std::string_view lastPart) const {
    const size_t slash = word.find_last_of('/');
    return slash != std::string_view::npos && m_whole.ends_with(word.substr(0, slash + 1)) &&
           lastPart.starts_with(word.substr(slash + 1));
  }

  const std::vector<std::string> m_words;
  std::vector<char> m_inFolder;
  std::string m_whole;  // the folder with its slash, folded
};

std::optional<std::vector<uint32_t>> ContentIndex::Search(const ContentQuery& query,
                                                          const std::stop_token& stop) const {
  WordFilter filter(query.Words);
  constexpr size_t Ranks = 4;
  std::array<std::vector<uint32_t>, Ranks> found;
  uint32_t looked = 0;
  const auto lookInto = [&](uint32_t folder) {
    filter.Enter(m_folders[folder]);
    for (uint32_t file = m_firstFiles[folder]; file < m_firstFiles[folder + 1]; ++file) {
      if (++looked % StopEvery == 0 && stop.stop_requested()) return false;
      if (!Means(file, query)) continue;
      const auto rank = filter.HasWords() ? filter.Rank(Folded(m_files[file])) : 0;
      if (rank) found[*rank].push_back(file);
    }
    return true;
  };
  const auto itself = FolderNumber(query.Folder);
  if (itself && !lookInto(*itself)) return std::nullopt;
  if (query.Below || filter.HasWords()) {
    const Range range = FolderRange(query.Folder);
    for (uint32_t folder = range.First; folder < range.End; ++folder) {
      if (!lookInto(folder)) return std::nullopt;
    }
  }
  std::vector<uint32_t> files;
  for (const std::vector<uint32_t>& each : found) files.insert(files.end(), each.begin(), each.end());
  if (stop.stop_requested()) return std::nullopt;
  Sort(files, query);
  return files;
}

void ContentIndex::Sort(std::vector<uint32_t>& files, const ContentQuery& query) const {
  const auto by = [&](auto compare) {
    std::sort(files.begin(), files.end(), [&](uint32_t a, uint32_t b) {
      const int difference = compare(a, b);
      return difference != 0 ? difference < 0 : a < b;
    });
  };
  const auto byNumber = [](auto a, auto b) { return a == b ? 0 : a < b ? -1 : 1; };
  switch (query.Order) {
    case ContentOrder::BestFirst:
      break;
    case ContentOrder::Name:
      by([this](uint32_t a, uint32_t b) { return CompareFolded(LastPart(a), LastPart(b)); });
      break;
    case ContentOrder::Folder:
      std::sort(files.begin(), files.end());
      break;
    case ContentOrder::Type:
      by([this](uint32_t a, uint32_t b) { return CompareFolded(ExtensionOf(LastPart(a)), ExtensionOf(LastPart(b))); });
      break;
    case ContentOrder::Size:
      by([&](uint32_t a, uint32_t b) { return byNumber(Size(a), Size(b)); });
      break;
    case ContentOrder::Place:
      by([&](uint32_t a, uint32_t b) { return byNumber(PlaceOf(a), PlaceOf(b)); });
      break;
  }
  if (query.Backwards) std::reverse(files.begin(), files.end());
}

std::vector<uint32_t> ContentIndex::WithCompanions(const std::vector<uint32_t>& files, bool allPlaces) const {
  constexpr std::array<std::string_view, 7> Endings = {".vvd",    ".vtx", ".dx80.vtx", ".dx90.vtx",
                                                       ".sw.vtx", ".phy", ".ani"};
  std::vector<uint32_t> all = files;
  for (const uint32_t file : files) {
    if (Kind(file) != ContentKind::Model) continue;
    const std::string name = Name(file);
    const std::string stem = name.substr(0, name.size() - ExtensionOf(name).size());
    for (const std::string_view ending : Endings) {
      auto found = Find(stem + std::string(ending), PlaceOf(file));
      if (!found && allPlaces) found = Find(stem + std::string(ending));
      if (found) all.push_back(*found);
    }
  }
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

std::optional<core::FileImage> ContentIndex::Read(uint32_t file, std::string& reason) const {
  const GamePlace& place = m_places[PlaceOf(file)];
  return place.InArchive != nullptr ? place.InArchive->Read(NumberInPlace(file), reason)
                                    : core::FileImage::Read(FullName(file), &reason);
}

}  // namespace tarnwick::archives

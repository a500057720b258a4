#include "archives/file_table.h"

#include <algorithm>
#include <numeric>

#include "archives/folded_text.h"

namespace tarnwick::archives {

namespace {

/// A name before and behind its last slash.
struct SplitName {
  explicit SplitName(std::string_view name) : LastPart(name) {
    const size_t slash = name.find_last_of("/\\");
    if (slash == std::string_view::npos) return;
    Folder = name.substr(0, slash);
    LastPart = name.substr(slash + 1);
  }
  std::string_view Folder;
  std::string_view LastPart;
};

uint64_t FileHash(uint64_t folderHash, std::string_view lastPart) {
  return HashFolded(lastPart, folderHash);
}

}  // namespace

template <typename Equal>
std::optional<uint32_t> FileTable::Index::Find(uint64_t hash, Equal same) const {
  if (m_slots.empty()) return std::nullopt;
  const size_t mask = m_slots.size() - 1;
  const auto key = static_cast<uint32_t>(hash);
  for (size_t place = key & mask; m_slots[place].Number != Empty; place = (place + 1) & mask) {
    if (m_slots[place].Hash == key && same(m_slots[place].Number)) return m_slots[place].Number;
  }
  return std::nullopt;
}

template <typename Equal>
uint32_t FileTable::Index::FindOrEnter(uint64_t hash, uint32_t number, Equal same) {
  Reserve(m_used + 1);
  const size_t mask = m_slots.size() - 1;
  const auto key = static_cast<uint32_t>(hash);
  size_t place = key & mask;
  for (; m_slots[place].Number != Empty; place = (place + 1) & mask) {
    if (m_slots[place].Hash == key && same(m_slots[place].Number)) return m_slots[place].Number;
  }
  m_slots[place] = {key, number};
  ++m_used;
  return number;
}

void FileTable::Index::Reserve(size_t count) {
  size_t size = std::max<size_t>(m_slots.size(), 16);
  while (count > size - size / 4) size *= 2;
  if (size == m_slots.size()) return;
  std::vector<Slot> slots(size);
  for (const Slot& slot : m_slots) {
    if (slot.Number == Empty) continue;
    size_t place = slot.Hash & (size - 1);
    while (slots[place].Number != Empty) place = (place + 1) & (size - 1);
    slots[place] = slot;
  }
  m_slots = std::move(slots);
}

std::optional<uint32_t> FileTable::AddFolder(std::string_view folder) {
  if (folder.size() > LongestName || m_text.size() + folder.size() > MostNameBytes || m_folders.size() >= MostFiles) {
    return std::nullopt;
  }
  const uint64_t hash = HashFolded(folder);
  const auto number = static_cast<uint32_t>(m_folders.size());
  const uint32_t found =
      m_folderIndex.FindOrEnter(hash, number, [&](uint32_t other) { return EqualFolded(Folder(other), folder); });
  if (found == number) {
    m_folders.push_back({static_cast<uint32_t>(m_text.size()), static_cast<uint32_t>(folder.size()), hash});
    m_text.insert(m_text.end(), folder.begin(), folder.end());
  }
  return found;
}

bool FileTable::Add(uint32_t folder, std::string_view stem, std::string_view extension, const FilePlace& place) {
  constexpr std::string_view Slashes = "/\\";
  if (stem.find_first_of(Slashes) != std::string_view::npos ||
      extension.find_first_of(Slashes) != std::string_view::npos) {
    // No last part after all: it is found by the folder that its whole name has.
    std::string name(Folder(folder));
    if (!name.empty()) name += '/';
    name += stem;
    if (!extension.empty()) (name += '.') += extension;
    return Add(name, place);
  }
  const size_t size = stem.size() + (extension.empty() ? 0 : extension.size() + 1);
  if (size > LongestName || m_text.size() + size > MostNameBytes || m_files.size() >= MostFiles) return false;
  const auto text = static_cast<uint32_t>(m_text.size());
  m_text.insert(m_text.end(), stem.begin(), stem.end());
  if (!extension.empty()) {
    m_text.push_back('.');
    m_text.insert(m_text.end(), extension.begin(), extension.end());
  }
  const auto number = static_cast<uint32_t>(m_files.size());
  m_files.push_back({place, folder, text, static_cast<uint16_t>(size)});
  const std::string_view lastPart = LastPart(number);
  m_fileIndex.FindOrEnter(FileHash(m_folders[folder].Hash, lastPart), number,
                          [&](uint32_t other) { return Same(other, folder, lastPart); });
  return true;
}

bool FileTable::Add(std::string_view name, const FilePlace& place) {
  const SplitName split(name);
  const auto number = AddFolder(split.Folder);
  return number && Add(*number, split.LastPart, {}, place);
}

void FileTable::MoveOffsets(uint64_t bytes) {
  for (File& file : m_files) file.Place.Offset += bytes;
}

void FileTable::Reserve(size_t files) {
  m_files.reserve(files);
  m_fileIndex.Reserve(files);
}

void FileTable::Shrink() {
  m_files.shrink_to_fit();
  m_folders.shrink_to_fit();
  m_text.shrink_to_fit();
}

bool FileTable::Same(uint32_t file, uint32_t folder, std::string_view lastPart) const {
  return m_files[file].Folder == folder && EqualFolded(LastPart(file), lastPart);
}

std::string FileTable::Name(uint32_t file) const {
  const std::string_view folder = Folder(FolderOf(file));
  std::string name(folder);
  if (!folder.empty()) name += '/';
  return name += LastPart(file);
}

std::string_view FileTable::LastPart(uint32_t file) const {
  return Text(m_files[file].Text, m_files[file].TextSize);
}

std::string_view FileTable::Folder(uint32_t folder) const {
  return Text(m_folders[folder].Text, m_folders[folder].TextSize);
}

std::optional<uint32_t> FileTable::Find(std::string_view name) const {
  const SplitName split(name);
  const auto number = m_folderIndex.Find(HashFolded(split.Folder),
                                         [&](uint32_t other) { return EqualFolded(Folder(other), split.Folder); });
  if (!number) return std::nullopt;
  return m_fileIndex.Find(FileHash(m_folders[*number].Hash, split.LastPart),
                          [&](uint32_t other) { return Same(other, *number, split.LastPart); });
}

bool FileTable::IsFirst(uint32_t file) const {
  const uint32_t folder = FolderOf(file);
  const std::string_view lastPart = LastPart(file);
  return m_fileIndex.Find(FileHash(m_folders[folder].Hash, lastPart),
                          [&](uint32_t other) { return Same(other, folder, lastPart); }) == file;
}

std::vector<uint32_t> FileTable::FilesIn(std::string_view folder, bool below) const {
  std::vector<bool> wanted(m_folders.size());
  for (uint32_t i = 0; i < FolderCount(); ++i) {
    const std::string_view name = Folder(i);
    if (!EqualFolded(name.substr(0, folder.size()), folder)) continue;
    const bool inside = folder.empty() || name.size() == folder.size() || Folded(name[folder.size()]) == '/';
    wanted[i] = name.size() == folder.size() || (below && inside);
  }
  std::vector<uint32_t> files;
  for (uint32_t i = 0; i < Count(); ++i) {
    if (wanted[FolderOf(i)]) files.push_back(i);
  }
  return files;
}

std::vector<uint32_t> FileTable::SortedByName() const {
  // Folders are few: they are ranked once, so that most comparisons are of numbers.
  std::vector<uint32_t> order(m_folders.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) {
    const int difference = CompareFolded(Folder(a), Folder(b));
    return difference != 0 ? difference < 0 : a < b;
  });
  std::vector<uint32_t> rank(order.size());
  for (uint32_t i = 0; i < order.size(); ++i) rank[order[i]] = i;
  std::vector<uint32_t> files(m_files.size());
  std::iota(files.begin(), files.end(), 0);
  std::sort(files.begin(), files.end(), [&](uint32_t a, uint32_t b) {
    if (FolderOf(a) != FolderOf(b)) return rank[FolderOf(a)] < rank[FolderOf(b)];
    const int difference = CompareFolded(LastPart(a), LastPart(b));
    return difference != 0 ? difference < 0 : a < b;
  });
  return files;
}

size_t FileTable::MemoryBytes() const {
  return m_files.capacity() * sizeof(File) + m_folders.capacity() * sizeof(FolderName) + m_text.capacity() +
         m_fileIndex.MemoryBytes() + m_folderIndex.MemoryBytes();
}

}  // namespace tarnwick::archives

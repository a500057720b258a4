#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::archives {

/// The archive number of what lies in the directory file itself.
inline constexpr uint16_t OwnPart = 0x7FFF;

/// Where a file of an archive lies. Nothing of it is true until the bytes have been read.
struct FilePlace {
  uint64_t Offset = 0;         // of its bytes in their part, from the part's first byte
  uint64_t Size = 0;           // of its bytes there
  uint32_t Crc = 0;            // CRC-32 of the whole file
  uint32_t PreloadOffset = 0;  // in the directory file, of the bytes that come before those in the part
  uint16_t PreloadSize = 0;
  uint16_t Part = OwnPart;

  uint64_t WholeSize() const { return Size + PreloadSize; }
};

/// What an archive may hold at the most; beyond it nobody but an enemy makes one.
inline constexpr size_t MostFiles = size_t{1} << 22;
inline constexpr size_t LongestName = 1023;  // bytes of a file's name, of its folder's
inline constexpr size_t MostNameBytes = size_t{512} << 20;

/// The names and places of an archive's files, in the order of the archive: about 75 bytes a file. A name is folder and
/// last part, which has no slash; equal folders are kept once, names are found by a hash, without regard to ASCII case
/// and slash.
class FileTable {
 public:
  /// The number of a folder ("" for the root), for `Add`. Nothing if the table is full.
  std::optional<uint32_t> AddFolder(std::string_view folder);
  /// Adds a file whose last part is `stem` and, where that is not empty, a dot and `extension`. False if the table is
  /// full. A file of a name that is there already can be had by its number only.
  bool Add(uint32_t folder, std::string_view stem, std::string_view extension, const FilePlace& place);
  /// Adds a file by its whole name.
  bool Add(std::string_view name, const FilePlace& place);
  /// Adds `bytes` to every offset.
  void MoveOffsets(uint64_t bytes);
  /// Makes room for as many files; gives back what is too much.
  void Reserve(size_t files);
  void Shrink();

  uint32_t Count() const { return static_cast<uint32_t>(m_files.size()); }
  const FilePlace& Place(uint32_t file) const { return m_files[file].Place; }
  /// The whole name as the archive has it, joined by `/`.
  std::string Name(uint32_t file) const;
  std::string_view LastPart(uint32_t file) const;
  uint32_t FolderOf(uint32_t file) const { return m_files[file].Folder; }
  uint32_t FolderCount() const { return static_cast<uint32_t>(m_folders.size()); }
  std::string_view Folder(uint32_t folder) const;

  /// The first file of that name, which is in the form of `PlainName`.
  std::optional<uint32_t> Find(std::string_view name) const;
  /// Whether `file` is the one that its name finds, and not a later one of the same name.
  bool IsFirst(uint32_t file) const;
  /// All files in `folder` (in the form of `PlainName`; "" for the root) and, with `below`, in the folders under it, in
  /// the archive's order.
  std::vector<uint32_t> FilesIn(std::string_view folder, bool below) const;
  /// All files, sorted by name.
  std::vector<uint32_t> SortedByName() const;

  /// Bytes of memory that the table takes.
  size_t MemoryBytes() const;

 private:
  struct File {
    FilePlace Place;
    uint32_t Folder;
    uint32_t Text;
    uint16_t TextSize;
  };
  struct FolderName {
    uint32_t Text;
    uint32_t TextSize;
    uint64_t Hash;
  };
  /// Numbers by hash, open addressing. A slot keeps 32 bits of the hash, so that growing needs no names.
  class Index {
   public:
    /// The number for which `same` holds among those of that hash, or `number`, which is then entered.
    template <typename Equal>
    uint32_t FindOrEnter(uint64_t hash, uint32_t number, Equal same);
    template <typename Equal>
    std::optional<uint32_t> Find(uint64_t hash, Equal same) const;
    void Reserve(size_t count);
    size_t MemoryBytes() const { return m_slots.capacity() * sizeof(Slot); }

   private:
    struct Slot {
      uint32_t Hash = 0;
      uint32_t Number = Empty;
    };
    static constexpr uint32_t Empty = 0xFFFFFFFF;
    std::vector<Slot> m_slots;
    size_t m_used = 0;
  };

  std::string_view Text(uint32_t offset, size_t size) const { return {m_text.data() + offset, size}; }
  bool Same(uint32_t file, uint32_t folder, std::string_view lastPart) const;

  std::vector<File> m_files;
  std::vector<FolderName> m_folders;
  std::vector<char> m_text;
  Index m_fileIndex;
  Index m_folderIndex;
};

}  // namespace tarnwick::archives

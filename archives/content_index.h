#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "archives/archive.h"
#include "archives/game_files.h"

namespace tarnwick::archives {

/// What a file of a game is, by its name.
enum class ContentKind : uint8_t { Other, Model, Texture, Material };
ContentKind KindOf(std::string_view name);

/// By what found files are sorted.
enum class ContentOrder {
  BestFirst,  // without words by folder and name; with words those first whose own name has them
  Name,
  Folder,
  Type,
  Size,
  Place,
};

/// What is looked for in an index.
struct ContentQuery {
  std::optional<uint32_t> Place = {};  // of Places(); nothing for all, each name once
  std::string Folder = {};             // in the form of `PlainName`; "" for the one above all
  bool Below = true;                   // also the folders under it; with words they always count
  std::string Words = {};              // parted by blanks; all must be in the whole name, one with `*` or `?` match it
  std::optional<ContentKind> Kind = {};  // nothing for all
  ContentOrder Order = ContentOrder::BestFirst;
  bool Backwards = false;
};

/// All files of several places (folders and archives) in one sorted list, to be looked through and searched. Files are
/// numbered in the order of folder and name, without regard to ASCII case. It never changes, so several threads may
/// use it at once. Beside the archives' own tables it takes
/// 24 bytes a file and the bytes of its last part.
class ContentIndex {
 public:
  /// The files of all places of a game; its folders are read from the disk, links that lead back are not followed. Null
  /// if it was stopped.
  static std::shared_ptr<const ContentIndex> Of(std::vector<GamePlace> places, const std::stop_token& stop);

  const std::vector<GamePlace>& Places() const { return m_places; }
  uint32_t Count() const { return static_cast<uint32_t>(m_files.size()); }

  /// The whole name as its place has it; behind the last slash; the folder in the form of `PlainName`.
  std::string Name(uint32_t file) const;
  std::string_view LastPart(uint32_t file) const;
  std::string_view Folder(uint32_t file) const { return m_folders[m_files[file].Folder]; }
  ContentKind Kind(uint32_t file) const { return m_files[file].Kind; }
  uint32_t PlaceOf(uint32_t file) const { return m_files[file].Place; }
  uint32_t NumberInPlace(uint32_t file) const { return m_files[file].Number; }
  uint64_t Size(uint32_t file) const;
  /// The name by which the rest of the program finds it: a path, or "pak01_dir.vpk:models/crate.mdl".
  std::string FullName(uint32_t file) const;
  /// Whether an earlier place has a file of that name, so that the game never sees this one.
  bool IsHidden(uint32_t file) const { return m_files[file].Hidden; }

  /// The first file of that name that the game sees, in `place` alone if that is given.
  std::optional<uint32_t> Find(std::string_view name, std::optional<uint32_t> place = {}) const;
  /// The folders directly in `folder` that have files of that kind in or below them, by their whole names, sorted;
  /// no more than `most`.
  std::vector<std::string> FoldersIn(std::optional<uint32_t> place, std::string_view folder,
                                     std::optional<ContentKind> kind, size_t most = MostFiles) const;
  /// The files that `query` means. Nothing if it was stopped.
  std::optional<std::vector<uint32_t>> Search(const ContentQuery& query, const std::stop_token& stop) const;
  /// `files` and, with each model, the files that belong to it (.vvd, .vtx, .phy, .ani) and lie in the same place, or,
  /// with `allPlaces`, where the game finds them. Sorted, each once.
  std::vector<uint32_t> WithCompanions(const std::vector<uint32_t>& files, bool allPlaces) const;

  /// The whole file. Nothing, with `reason`, if it cannot be had.
  std::optional<core::FileImage> Read(uint32_t file, std::string& reason) const;

 private:
  struct File {
    uint32_t Place;
    uint32_t Number;  // in the place's table
    uint32_t Folder;
    ContentKind Kind;
    bool Hidden;
    uint16_t TextSize;
    size_t Text;  // of the last part in m_text
  };
  struct Range {
    uint32_t First;
    uint32_t End;
  };
  class WordFilter;

  ContentIndex() = default;
  const FileTable& Table(uint32_t place) const;
  bool Fill(const std::stop_token& stop);
  bool Order(const std::stop_token& stop);
  std::string_view Folded(const File& file) const { return {m_text.data() + file.Text, file.TextSize}; }
  Range FolderRange(std::string_view folder) const;  // those below it, without itself
  std::optional<uint32_t> FolderNumber(std::string_view folder) const;
  bool Means(uint32_t file, const ContentQuery& query) const;
  void Sort(std::vector<uint32_t>& files, const ContentQuery& query) const;

  std::vector<GamePlace> m_places;
  std::vector<std::unique_ptr<FileTable>> m_loose;  // by place; null for archives
  std::vector<std::string> m_folders;               // sorted
  std::vector<uint32_t> m_firstFiles;               // of each folder, and behind the last
  std::vector<File> m_files;                        // sorted
  std::vector<char> m_text;                         // last parts, folded, in the order of the files: searched quickly
};

}  // namespace tarnwick::archives

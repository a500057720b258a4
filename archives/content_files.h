#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "archives/archive.h"
#include "archives/archive_name.h"
#include "archives/game_files.h"
#include "archives/loose_folder.h"
#include "core/file_source.h"
#include "core/folder_names.h"

namespace tarnwick::archives {

/// A file that a folder or a pattern means.
struct ListedFile {
  std::string Name;   // whole, as `ContentFiles` reads it
  std::string Below;  // its path below the folder, or below the last folder of a pattern that has no wildcard
  bool operator==(const ListedFile&) const = default;
};

/// Files by every name that a user may give (`ReadContentName`): on the disk, in an archive, through the search paths
/// of a game. Archives that were opened stay open until they change on the disk. Several threads may ask at once.
class ContentFiles : public core::FileSource {
 public:
  /// `gameDirectory` has the gameinfo.txt by which `game:` names and companions are found; "" for none. It is read when
  /// it is first needed; what is wrong with the places that it tells goes to `sink`, which outlives this object.
  ContentFiles(std::string gameDirectory, core::TroubleSink& sink)
      : m_gameDirectory(std::move(gameDirectory)), m_sink(sink) {}

  std::optional<core::FileImage> Read(const std::string& name, std::string* reason) const override;

  std::optional<core::FileImage> ReadIf(const std::string& name, size_t start, const core::WantsFile& wants,
                                        std::string* reason) const override;
  bool ReadStart(const std::string& name, std::span<std::byte> out) const override;
  bool Holds(const std::string& name) const override;
  /// In the same archive; on the disk in the same folder; of a `game:` name, wherever it is found.
  std::optional<std::string> FindBeside(const std::string& name) const override;
  /// Through the search paths: for a file in an archive, and for one in a loose folder of the game to which a `game:`
  /// name has led before.
  std::optional<std::string> FindElsewhere(const std::string& name) const override;

  /// The files with `extension` (".mdl", in any case; "" for all) that `name` means in an archive or a game, sorted: by
  /// a folder those in it and, with `below`, under it; by a pattern (`MatchesPattern`) all that it means. Nothing if
  /// `name` is a path or means one file, there or not, or if the place cannot be had; `reason` is empty for the first
  /// two.
  std::optional<std::vector<ListedFile>> FilesIn(const std::string& name, std::string_view extension, bool below,
                                                 std::string& reason) const;

  /// The name under which to read `inside` ("materials/brick.vmt") of the game that the model or other file `owner` is
  /// of, without regard to case. What belongs to the owner is its archive, or on the disk the folder above the last one
  /// called `models` that it lies in and its own folder. Where the search paths of the game hold that, their order
  /// counts, as in the game; else the owner's own places come first. A game directory without gameinfo.txt is searched
  /// as one folder. Nothing if no place has it.
  std::optional<std::string> FindGameFile(const std::string& owner, const std::string& inside) const override;
  /// The places in which `FindGameFile` looks, in its order, for people: "pak01_dir.vpk, the game in /games/mod"; ""
  /// for none.
  std::string PlacesFor(const std::string& owner) const;
  /// Every name under which `FindGameFile` looks for the file, in its order.
  std::vector<std::string> TriedFor(const std::string& owner, const std::string& inside) const;

  /// The archive at `path`, opened once, and anew when it has changed. Null, with `reason`, if it cannot be had.
  std::shared_ptr<const Archive> OpenArchive(const std::string& path, std::string& reason) const;
  /// Where a `game:` name leads: a path, or the whole name of a file in an archive; any other name stays. Nothing, with
  /// `reason`, if no place has it.
  std::optional<std::string> Resolve(const std::string& name, std::string& reason) const;
  /// The game's places. Null, with `reason`, if there is no game directory or its gameinfo.txt cannot be read.
  const GameFiles* Game(std::string& reason) const;
  const std::string& GameDirectory() const { return m_gameDirectory; }
  /// Lets files be found that were written since. Archives stay as they were opened. Nobody else may ask meanwhile.
  void Refresh();

 private:
  struct Place;
  struct Root;
  std::vector<Root> RootsFor(const std::string& owner) const;
  bool IsOfGame(const std::string& path) const;
  std::optional<Place> Find(const std::string& name, std::string& reason) const;
  const LooseFolder& Loose(const std::string& path) const;

  const std::string m_gameDirectory;
  core::TroubleSink& m_sink;
  mutable core::FolderNames m_names;  // on the disk
  mutable std::mutex m_lock;
  mutable std::map<std::string, std::shared_ptr<const Archive>> m_archives;  // by path
  mutable std::map<std::string, std::unique_ptr<LooseFolder>> m_loose;       // by path
  mutable std::map<std::string, bool> m_isOfGame;                            // whether search paths hold that path
  mutable std::unique_ptr<GameFiles> m_game;
  mutable bool m_gameTried = false;
  mutable std::string m_gameReason;  // why there is none
  mutable std::map<std::string, std::string>
      m_gameFolders;  // loose folders that names led to: path to name in the game
};

}  // namespace tarnwick::archives

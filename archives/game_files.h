#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "archives/archive.h"
#include "archives/game_info.h"
#include "archives/loose_folder.h"
#include "core/file_image.h"
#include "core/trouble.h"

namespace tarnwick::archives {

/// A file as one place of a game has it.
struct FoundFile {
  const Archive* InArchive = nullptr;  // null for a loose file
  uint32_t Number = 0;                 // in the archive
  std::string Name;                    // a path, or "archive.vpk:models/crate.mdl"
};

/// What a folder of a game holds, over all places.
struct GameFolder {
  std::vector<std::string> Folders;  // sorted, each once
  std::vector<std::string> Files;
};

/// One place in which a game looks for files.
struct GamePlace {
  std::string Path;
  std::shared_ptr<const Archive> InArchive;  // null for a folder
};

/// All places in which a game looks for files, in its order: the first that has a file wins. Looking up is without
/// regard to ASCII case and slash. Archives are opened at once, loose folders read when they are first looked into.
/// Several threads may look at once.
class GameFiles {
 public:
  /// Opens the places that gameinfo.txt in `gameDirectory` tells. Null, with `reason`, if that cannot be read. An
  /// archive that cannot be opened is told to `sink` and left out; a place that is not there is passed over.
  static std::unique_ptr<GameFiles> Open(const std::string& gameDirectory, core::TroubleSink& sink,
                                         std::string& reason);
  /// The same for places that are known.
  static std::unique_ptr<GameFiles> Open(const std::vector<SearchPath>& paths, core::TroubleSink& sink);

  std::optional<FoundFile> Find(std::string_view name) const;
  /// The whole file of that name. Nothing, with `reason`, if no place has it or it cannot be read.
  std::optional<core::FileImage> Read(std::string_view name, std::string& reason) const;
  /// What the folder of that name holds; "" for the folder above all.
  GameFolder List(std::string_view folder) const;
  /// The names of all files in a folder and, with `below`, under it, sorted, each once.
  std::vector<std::string> FilesIn(std::string_view folder, bool below) const;

  /// The paths of all places, in order, for people.
  std::vector<std::string> Places() const;
  /// All places, in order.
  std::vector<GamePlace> AllPlaces() const;
  /// Lets files be found that were written since. Archives that changed on the disk are opened anew; one that cannot be
  /// stays as it was. Nobody else may look meanwhile, or keep what was found before.
  void Refresh();

 private:
  using Place = std::variant<std::shared_ptr<const Archive>, std::unique_ptr<LooseFolder>>;

  GameFiles() = default;
  void AddArchive(const std::string& path, core::TroubleSink& sink);
  void AddFolder(const std::string& path, core::TroubleSink& sink);
  void AddAllBelow(const std::string& path, core::TroubleSink& sink);
  bool IsNew(const std::string& path);

  std::vector<Place> m_places;
  std::vector<std::string> m_known;  // places that are in the list
};

}  // namespace tarnwick::archives

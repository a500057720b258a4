#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::archives {

/// One place in which a game looks for files, as gameinfo.txt tells it.
struct SearchPath {
  enum class Kind {
    Place,     // a folder, or an archive where Path ends in .vpk
    AllBelow,  // every folder and every .vpk directly in the folder Path
  };
  Kind What = Kind::Place;
  std::string Path;  // on the disk; relative only if the game directory is
  bool operator==(const SearchPath&) const = default;
};

/// The search paths of the text of a gameinfo.txt that lies in `gameDirectory`: GameInfo, FileSystem, SearchPaths,
/// those whose key has the word `game` or `mod` and whose condition holds. `|gameinfo_path|` stands for the game
/// directory, `|all_source_engine_paths|` and a relative path for the folder above it. Nothing, with `reason`, if the
/// text has no such list.
std::optional<std::vector<SearchPath>> ReadSearchPaths(std::string_view text, const std::string& gameDirectory,
                                                       std::string& reason);

}  // namespace tarnwick::archives

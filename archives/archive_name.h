#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::archives {

/// What a name that a user gives stands for.
struct ContentName {
  enum class Place {
    Disk,     // Path is a path on the disk
    Archive,  // Inside is a name in the archive at Path
    Game,     // Inside is a name to be looked for through the search paths of the game
  };
  Place Where = Place::Disk;
  std::string Path;
  std::string Inside;  // slashes as they were; "" for the whole archive
};

/// Takes a name apart: `path/to/pak01_dir.vpk:models/crate.mdl`, `addon.gma:models/crate.mdl`,
/// `game:models/crate.mdl`, or a path. What is there on the disk under the whole name is a path. The archive must end
/// in .vpk or .gma, in any case; where there is no `x.vpk`, it is `x_dir.vpk` if that is there.
ContentName ReadContentName(const std::string& name);

/// Whether `path` ends in .vpk or .gma.
bool HasArchiveExtension(std::string_view path);

/// `x_dir.vpk`, if there is such a file, for a path `x.vpk` at which nothing is, and for that of a part of the archive,
/// `x_000.vpk`; otherwise the path.
std::string DirectoryFileOf(const std::string& path);

}  // namespace tarnwick::archives

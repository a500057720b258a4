#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "archives/content_files.h"
#include "core/trouble.h"

namespace tarnwick::jobs {

/// A file that a user names, itself or through a folder.
struct InputFile {
  std::string Path;     // or another name, as the content reads it
  std::string Name;     // of a named file its last part; of one in a folder its path below that folder
  bool Listed = false;  // through a folder
};

/// Files that were found, and why others were not.
struct InputFiles {
  std::vector<InputFile> Files;
  std::vector<core::Trouble> Troubles;
};

/// The files that `inputs` name, on the disk, in archives and by `game:`: files as they stand, and of folders every
/// file with `extension` (".vtf", in any case) in them or, with `recursive`, below them, sorted. One whose name could
/// lead out of a folder of outputs is refused: with `..`, a drive or a control byte in an archive, with a backslash
/// where that is no separator on the disk.
[[nodiscard]] InputFiles FindInputFiles(const std::vector<std::string>& inputs, std::string_view extension,
                                        bool recursive, const archives::ContentFiles& content);

/// The same where no game is known.
[[nodiscard]] InputFiles FindInputFiles(const std::vector<std::string>& inputs, std::string_view extension,
                                        bool recursive);

/// `name` less `extension`, in any case, if it ends so.
[[nodiscard]] std::string WithoutExtension(std::string name, std::string_view extension);

/// Gives out names, each once in any case: the later of two gets "_2", "_3", ...
class UniqueNames {
 public:
  std::string Take(const std::string& name);

 private:
  std::set<std::string> m_taken;
};

}  // namespace tarnwick::jobs

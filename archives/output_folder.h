#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace tarnwick::archives {

/// A folder that files are taken out into, each below it under the name that it has in its archive. Nothing is written
/// outside the folder, neither by a name (`UnsafeReason`) nor through a link that lies in it.
class OutputFolder {
 public:
  /// Makes the folder if it is not there. False, with `reason`, if it cannot be made.
  bool Open(const std::string& path, std::string& reason);

  enum class Answer {
    Ready,       // the file may be written at `target`
    Refused,     // it must not be
    Unwritable,  // its folder cannot be made
  };
  /// Where the file of that name goes, its folder made; `reason` tells why not.
  Answer Place(const std::string& name, std::filesystem::path& target, std::string& reason);

  /// The path of that file as whoever named the folder would write it.
  std::string PathOf(const std::string& name) const;

 private:
  std::string FolderReason(const std::filesystem::path& folder) const;

  std::string m_path;
  std::filesystem::path m_root;                            // the folder without links
  std::map<std::filesystem::path, std::string> m_folders;  // those asked for so far, with what is wrong with them
};

}  // namespace tarnwick::archives

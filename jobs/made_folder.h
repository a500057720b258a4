#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tarnwick::jobs {

/// A folder made for files to come. What was made and is still empty when the object goes away is removed again, so
/// that a job that writes nothing leaves nothing.
class MadeFolder {
 public:
  MadeFolder() = default;
  MadeFolder(const MadeFolder&) = delete;
  MadeFolder& operator=(const MadeFolder&) = delete;
  ~MadeFolder();

  /// Makes the folder at `path` with all that lead to it. Says why that failed; "" if the folder is there.
  [[nodiscard]] std::string Make(const std::string& path);
  /// The same by the path that the system takes.
  [[nodiscard]] std::string Make(const std::filesystem::path& folder);
  /// Lets what was made stay, as there is something in it.
  void Keep() { m_made.clear(); }

 private:
  std::vector<std::filesystem::path::string_type> m_made;  // the innermost last
};

}  // namespace tarnwick::jobs

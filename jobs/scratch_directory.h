#pragma once

#include <filesystem>
#include <string>

namespace tarnwick::jobs {

/// A new empty folder of the system's place for temporary files, for the user alone; it goes away with all that is in
/// it.
class ScratchDirectory {
 public:
  /// Empty, with the reason in `Problem`, if no folder can be made.
  ScratchDirectory();
  ~ScratchDirectory();
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  const std::filesystem::path& Path() const { return m_path; }
  const std::string& Problem() const { return m_problem; }

 private:
  std::filesystem::path m_path;
  std::string m_problem;
};

}  // namespace tarnwick::jobs

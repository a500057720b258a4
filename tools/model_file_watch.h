#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tarnwick::tools {

/// A compiled model's file, watched over a run.
class ModelFileWatch {
 public:
  /// Looks at the model that the script makes in `gameDirectory`, before the run.
  ModelFileWatch(const std::string& gameDirectory, const std::string& qcPath);

  /// The model's path below the game directory; empty if the script names none.
  const std::string& Path() const { return m_path; }
  /// After the run: whether the model was written since. Nothing if it is not known which file to look at.
  std::optional<bool> WasWritten() const;

 private:
  std::string m_path;
  std::optional<std::filesystem::file_time_type> m_before;
};

}  // namespace tarnwick::tools

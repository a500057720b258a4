#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarnwick::jobs {

/// A file as it was before a tool ran, to tell whether the tool has written it. Where there is none at the path itself
/// the one counts whose name differs from it in case only, as tools write names in their own way.
class FileBefore {
 public:
  explicit FileBefore(std::string path);

  /// Whether there is a file now, and not the one of before.
  [[nodiscard]] bool IsWrittenAnew() const { return NewFile().has_value(); }
  /// The path of that file, with its name as the folder has it; nothing if it was not written.
  [[nodiscard]] std::optional<std::string> NewFile() const;
  /// Whether there was one before.
  [[nodiscard]] bool Existed() const { return m_time.has_value(); }

 private:
  std::string m_path;
  std::optional<int64_t> m_time;
};

}  // namespace tarnwick::jobs

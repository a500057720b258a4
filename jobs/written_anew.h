#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tarnwick::jobs {

/// A file as it was before a tool ran, to tell whether the tool has written it.
class FileBefore {
 public:
  explicit FileBefore(const std::string& path);

  /// Whether there is a file now, and not the one of before.
  bool IsWrittenAnew() const;
  /// Whether there was one before.
  bool Existed() const { return m_time.has_value(); }

 private:
  std::filesystem::path m_path;
  std::optional<std::filesystem::file_time_type> m_time;
};

}  // namespace tarnwick::jobs

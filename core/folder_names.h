#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

namespace tarnwick::core {

/// Finds files without regard to case, as FindIgnoringCase does, for who asks for many: a folder of many names is not
/// read anew for each of them. What is written meanwhile is found. Several threads may ask at once.
class FolderNames {
 public:
  /// `path` itself, or the one file beside it whose name differs in case only.
  [[nodiscard]] std::optional<std::string> Find(const std::string& path);

 private:
  /// What a folder held at a time.
  struct Listing {
    std::unordered_multimap<std::string, std::string> Names;  // by themselves in small letters
    std::filesystem::file_time_type Changed;
    std::chrono::steady_clock::time_point Read;
  };
  using Known = std::shared_ptr<const Listing>;

  [[nodiscard]] static bool IsOf(const Listing& listing, const std::string& folder);
  [[nodiscard]] static Known Read(const std::string& folder);

  std::mutex m_lock;
  std::map<std::string, Known> m_large;  // folders of many names, a listing where one was made
};

}  // namespace tarnwick::core

#pragma once

#include <cstdint>
#include <string>

namespace tarnwick::core {

/// A file that some work has written.
struct WrittenFile {
  std::string Path;
  uint64_t Size = 0;

  bool operator==(const WrittenFile&) const = default;
};

}  // namespace tarnwick::core

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace tarnwick::core {

/// When the file or folder at `path` was written last: as finely as the system knows it, in a unit of its own, to be
/// compared with another such time. The library's time has whole seconds on Windows. Nothing if it cannot be asked.
[[nodiscard]] std::optional<int64_t> WriteTime(const std::filesystem::path& path);

}  // namespace tarnwick::core

#pragma once

#include <string>

namespace tarnwick::core {

/// Whether both paths lead to the same folder, or file, that is there, however they are written.
[[nodiscard]] bool IsSameFolder(const std::string& a, const std::string& b);

}  // namespace tarnwick::core

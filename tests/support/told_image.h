#pragma once

#include <string>

#include "core/paths.h"

namespace tarnwick::tests {

/// The path or name of an image that is converted, as it is told: on Windows, where the case of letters means nothing,
/// in small ones.
inline std::string ToldImage(const std::string& path) {
#ifdef _WIN32
  return core::LowerAscii(path);
#else
  return path;
#endif
}

}  // namespace tarnwick::tests

#pragma once

#include <string>

namespace tarnwick::textures {

/// The number of an animation's frame as it stands in a file name: three digits, or more where it needs more.
inline std::string FrameNumber(int frame) {
  const std::string digits = std::to_string(frame);
  return std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits;
}

}  // namespace tarnwick::textures

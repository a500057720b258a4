#pragma once

#include <cstdint>
#include <limits>

namespace tarnwick::model {

/// `value` truncated towards zero. What no int32 holds, a not-a-number too, becomes the lowest one, as the processor's
/// own conversion gives it.
inline int32_t TruncateToInt(float value) {
  constexpr float Limit = 2147483648.0f;
  return value > -Limit && value < Limit ? static_cast<int32_t>(value) : std::numeric_limits<int32_t>::min();
}

}  // namespace tarnwick::model

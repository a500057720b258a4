#pragma once

#include <bit>
#include <cstdint>

namespace tarnwick::images {

/// Whether `size` has at most one bit set. 0 counts as a power of two: there is nothing to round.
constexpr bool IsPowerOfTwo(uint32_t size) {
  return ((size - 1) & size) == 0;
}

/// `size`, or the next power of two above it: 300 becomes 512, 513 becomes 1024. Sizes are below 2^27.
constexpr uint32_t RoundedToPowerOfTwo(uint32_t size) {
  return IsPowerOfTwo(size) ? size : std::bit_ceil(size);
}

}  // namespace tarnwick::images

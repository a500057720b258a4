#pragma once

#include <cstdint>

#include "textures/stored_image.h"

namespace tarnwick::textures {

/// Where the bytes of a decoded pixel come from, in a format whose channels are whole bytes.
struct ByteOrder {
  static constexpr uint8_t Zero = 0xFE;  // not stored: 0
  static constexpr uint8_t Full = 0xFF;  // not stored: 255

  uint8_t From[4];  // for blue, green, red, alpha: the number of the stored byte, or Zero, or Full
};

/// The order of the bytes of `format`; null where its channels are not whole bytes.
const ByteOrder* FindByteOrder(PixelFormat format);

/// Decodes `count` pixels of `stored` bytes each, that stand one behind the other. Reads and writes no byte outside
/// them.
void ReorderBytes(const ByteOrder& order, int stored, const uint8_t* from, int count, PixelLayout layout, uint8_t* to);

}  // namespace tarnwick::textures

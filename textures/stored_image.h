#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "textures/vtf_format.h"

namespace tarnwick::textures {

/// One image as a texture file stores it, top row first. `Pixels` holds ImageBytes(format, Width, Height) bytes, and
/// the format is one that can be decoded.
struct StoredImage {
  PixelFormat Format = PixelFormat::None;
  int Width = 0;
  int Height = 0;
  std::span<const std::byte> Pixels;
};

/// How decoded pixels lie in memory, which is how a TGA file holds them; the value is the bytes of one pixel.
enum class PixelLayout { Bgr24 = 3, Bgra32 = 4 };

constexpr int BytesPerPixel(PixelLayout layout) {
  return static_cast<int>(layout);
}

/// One decoded pixel.
struct Bgra {
  uint8_t B = 0;
  uint8_t G = 0;
  uint8_t R = 0;
  uint8_t A = 0;

  bool operator==(const Bgra&) const = default;
};
static_assert(sizeof(Bgra) == 4);

}  // namespace tarnwick::textures

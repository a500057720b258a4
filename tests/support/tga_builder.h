#pragma once

#include <string>

#include "textures/picture.h"
#include "textures/tga_format.h"

namespace tarnwick::tests {

/// The bytes of a TGA file: `header`, an identification and a colour map if the header speaks of them (both given in
/// `between`), and the stored pixels.
std::string TgaFile(const textures::TgaHeader& header, std::string_view pixels, std::string_view between = {});

/// A header of `width` by `height` pixels, topmost row first.
textures::TgaHeader TgaHeaderOf(uint8_t type, int bits, int width, int height);

/// `picture` as an uncompressed TGA file of 32 bits.
std::string TgaOf(const textures::Picture& picture);

/// A picture whose pixels are `pixelAt(x, y)`.
template <typename PixelAt>
textures::Picture PictureOf(int width, int height, PixelAt pixelAt) {
  textures::Picture picture{width, height, {}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) picture.Pixels.push_back(pixelAt(x, y));
  }
  return picture;
}

}  // namespace tarnwick::tests

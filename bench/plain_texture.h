#pragma once

#include <cstdint>

#include "textures/stored_image.h"

namespace tarnwick::bench {

/// Decodes a DXT1, DXT5 or BGRA8888 image the plain way, each pixel for itself, as the pixels of a TGA file, lowest row
/// first: what the fast decoders are measured against. It is given what it needs and looks nothing up.
void DecodePlainly(const textures::StoredImage& image, textures::PixelLayout layout, uint8_t* out);

}  // namespace tarnwick::bench

#pragma once

#include <cstddef>
#include <cstdint>

#include "textures/stored_image.h"

namespace tarnwick::textures {

/// How an image is to be decoded so that nothing is lost: with alpha where its format holds alpha, or where it is DXT1
/// and a block uses transparency; without otherwise.
PixelLayout LayoutFor(const StoredImage& image);

/// Decodes `rows` rows from row `firstRow` (a multiple of 4) on, as fast as memory takes them; each pixel as
/// ReferencePixel tells. The first row goes to `out`, each next one `stride` bytes behind it (in front of it where that
/// is negative). `rows` is a multiple of 4 unless the image ends there. Writes no byte outside the rows.
void DecodeRows(const StoredImage& image, int firstRow, int rows, PixelLayout layout, uint8_t* out, ptrdiff_t stride);

}  // namespace tarnwick::textures

#pragma once

#include <cstddef>
#include <cstdint>

#include "textures/stored_image.h"

namespace tarnwick::textures {

/// Whether a pixel of a DXT1 image is transparent: a block with three colours uses its fourth.
bool Dxt1UsesAlpha(const StoredImage& image);

/// Decodes `rows` rows (the last of the image may be fewer than 4) of a DXT image from row `firstRow` (a multiple of 4)
/// on. The pixels of a row stand side by side; the first row goes to `out`, each next one `stride` bytes behind it (in
/// front of it where that is negative). Writes no byte outside the rows.
void DecodeDxtRows(const StoredImage& image, int firstRow, int rows, PixelLayout layout, uint8_t* out,
                   ptrdiff_t stride);

/// The same in portable code, whatever the processor has.
void DecodeDxtRowsPortable(const StoredImage& image, int firstRow, int rows, PixelLayout layout, uint8_t* out,
                           ptrdiff_t stride);

}  // namespace tarnwick::textures

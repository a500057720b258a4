#pragma once

#include <cstddef>
#include <cstdint>

#include "textures/stored_image.h"

namespace tarnwick::textures {

/// Decodes the first `blocks` blocks of each line of blocks, all of them whole, with the processor's byte shuffles; the
/// rest as in DecodeDxtRows. `rows` is a multiple of 4. DXT3 and DXT5 have the layout Bgra32. In the layout Bgr24 the 4
/// bytes behind each row of the last block are overwritten. Call only where HasSsse3() holds.
void DecodeDxtBlocksSsse3(const StoredImage& image, int blocks, int firstRow, int rows, PixelLayout layout,
                          uint8_t* out, ptrdiff_t stride);

}  // namespace tarnwick::textures

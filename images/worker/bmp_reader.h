#pragma once

#include <optional>

#include "images/worker/decoded.h"
#include "images/worker/image_file.h"

namespace tarnwick::images {

/// Whether `file` is a BMP file of a kind that the library does not read: with one of the longer headers (52, 56, 108
/// or 124 bytes), or run-length encoded. The size that its header tells; nothing otherwise.
std::optional<HeaderSize> OwnBmpSize(const ImageFile& file);

/// Reads such a file: 1, 4, 8 bits with a palette, plain or run-length encoded, and 16, 24, 32 bits with the masks that
/// the header has. The image has 24 bits a pixel, or 32 where there is a mask for alpha and any pixel uses it. Pixels
/// that the file does not tell are black, and `Damage` says so where its end cut them off. No image, with `Failure`,
/// where the header makes no sense.
Decoded ReadOwnBmp(const ImageFile& file);

}  // namespace tarnwick::images

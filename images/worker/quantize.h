#pragma once

#include "images/worker/image_file.h"

namespace tarnwick::images {

/// An image of 16, 24 or 32 bits with a palette of at most 256 colours. Pixels that are more transparent than not
/// become the last entry of the palette, which is marked transparent. Null if memory runs out.
Bitmap QuantizeWithTransparency(FIBITMAP* image);

}  // namespace tarnwick::images

#pragma once

#include "images/worker/image_file.h"

namespace tarnwick::images {

/// The image with 1 to 32 bits a pixel: 16 bits a channel are cut to 8; floats with colours are linear light and become
/// sRGB with their alpha, grey floats likewise where `from` is a format of linear light; other kinds of numbers are
/// scaled to 0 to 255. An image that already is so is passed through. Null if memory runs out.
Bitmap ToStandard(Bitmap image, FREE_IMAGE_FORMAT from = FIF_UNKNOWN);

/// The image as `format` can hold it, changed as little as possible. Saving anything else would write a broken file,
/// for the library does not check. Null if the format can hold no image.
Bitmap FitToFormat(Bitmap image, FREE_IMAGE_FORMAT format);

}  // namespace tarnwick::images

#pragma once

#include "images/worker/image_file.h"

namespace tarnwick::images {

/// A picture of floats in linear light (one, three or four channels) as 24 bits a pixel, or 32 with its alpha: each
/// colour is cut to 0 to 1 and brought to sRGB, alpha is scaled as it is. A colour that is no number is black. Null if
/// memory runs out.
Bitmap LinearToSrgb(FIBITMAP* image);

/// The other way: sRGB of 24 or 32 bits to floats in linear light, with the alpha of 32 bits. Null if memory runs out.
Bitmap SrgbToLinear(FIBITMAP* image);

}  // namespace tarnwick::images

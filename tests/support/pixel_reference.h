#pragma once

#include "textures/stored_image.h"

namespace tarnwick::tests {

/// The pixel at column `x`, row `y`, worked out in the plainest way, one pixel at a time. This is what every faster way
/// must give (see pixel_rows.h); tests and benchmarks compare with it.
///
/// - Channels of fewer than 8 bits repeat their upper bits below, so that the largest value is 255; channels of 16
///   bits are rounded; half floats are clamped to 0 to 1, not-a-number is 0.
/// - A block of DXT1 whose first colour is not above its second has three colours and a transparent black; DXT3 and
///   DXT5 always have four colours. Colours between the two are rounded down.
/// - U, V, W (or L) and Q go to red, green, blue and alpha; a channel that the format lacks is 0, alpha 255. A8 is
///   white. Pure blue of the blue-screen variants has alpha 0.
textures::Bgra ReferencePixel(const textures::StoredImage& image, int x, int y);

}  // namespace tarnwick::tests

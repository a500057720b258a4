#pragma once

#include <cstdint>

#include "textures/stored_image.h"

namespace tarnwick::textures {

/// Decodes `count` pixels of a format whose channels are no whole bytes (16-bit pixels, 16-bit channels), that stand
/// one behind the other. False for any other format.
bool DecodePacked(PixelFormat format, const uint8_t* from, int count, PixelLayout layout, uint8_t* to);

}  // namespace tarnwick::textures

#pragma once

#include <optional>
#include <string>

#include "core/image_view.h"
#include "textures/picture.h"

namespace tarnwick::textures {

/// Reads a TGA file: true colour (15, 16, 24, 32 bits), grey (8 bits, 16 with alpha) and colour-mapped (8 or 16 bits,
/// the entries of 15 to 32 bits), plain or run-length encoded, the first pixel in any of the four corners.
///
/// Pixels of 16 bits have alpha where the header says so. Where all pixels of 32 bits have alpha 0 and the header
/// speaks of no alpha, the fourth byte is unused and the picture opaque.
///
/// Nothing, with the `reason`, if the file is damaged, ends early, refers to colours that its map does not have, is
/// of a kind not named above, or is larger than LargestSide. Memory is taken only for pixels that a file of this size
/// can hold.
std::optional<Picture> ReadTga(core::ImageView file, std::string& reason);

}  // namespace tarnwick::textures

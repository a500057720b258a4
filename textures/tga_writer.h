#pragma once

#include <functional>
#include <string_view>

#include "textures/stored_image.h"
#include "textures/tga_format.h"

namespace tarnwick::textures {

/// The header of an uncompressed TGA file, lowest row first, which every reader understands.
TgaHeader MakeTgaHeader(int width, int height, PixelLayout layout);

/// Decodes `image` as an uncompressed TGA file of 24 or 32 bits and hands it piece by piece to `write`, which says
/// whether it could take the piece; stops and returns false when it could not. Needs memory for a few rows only.
bool WriteTga(const StoredImage& image, PixelLayout layout, const std::function<bool(std::string_view)>& write);

}  // namespace tarnwick::textures

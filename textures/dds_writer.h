#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "textures/picture.h"
#include "textures/stored_image.h"

namespace tarnwick::textures {

/// Whether a DDS file can hold images of `format` byte for byte.
bool DdsHolds(PixelFormat format);

/// Hands a DDS file of `levels`, the largest first, each half the size of the one before, piece by piece to `write`,
/// which says whether it could take the piece. All have one format, which DdsHolds.
bool WriteDds(std::span<const StoredImage> levels, const std::function<bool(std::string_view)>& write);

/// The same of a picture alone, with one level, as DXT1 where it is opaque and DXT5 where not.
bool WriteDds(const Picture& picture, const std::function<bool(std::string_view)>& write);

}  // namespace tarnwick::textures

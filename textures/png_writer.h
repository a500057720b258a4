#pragma once

#include <optional>
#include <string>

#include "textures/picture.h"

namespace tarnwick::textures {

/// The bytes of a PNG file that holds `picture`: with alpha where a pixel is not fully opaque. Nothing, with `reason`,
/// if it cannot be made.
std::optional<std::string> PngOf(const Picture& picture, std::string& reason);

}  // namespace tarnwick::textures

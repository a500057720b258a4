#pragma once

#include <string>

#include "textures/picture.h"

namespace tarnwick::textures {

/// How much work goes into a DXT block: the best fit that libsquish finds, or a quick one along the line through its
/// colours.
enum class FitEffort { Best, Quick };

/// The picture as a texture file stores it in BGR888, BGRA8888, DXT1, DXT1_ONEBITALPHA or DXT5. DXT blocks are worked
/// out on all cores. DXT1 takes every pixel as opaque; with one-bit alpha those with alpha below 128 become
/// transparent black.
std::string EncodePicture(const Picture& picture, PixelFormat format, FitEffort effort = FitEffort::Best);

}  // namespace tarnwick::textures

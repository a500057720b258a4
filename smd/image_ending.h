#pragma once

#include <string_view>

namespace tarnwick::smd {

/// Whether a name ends as an image file's does (`wood.tga`), in any case. A compile takes such an ending away from the
/// name of a material.
bool EndsAsImage(std::string_view name);

}  // namespace tarnwick::smd

#pragma once

#include <string>

#include "images/worker/image_file.h"

namespace tarnwick::images {

/// Why the TGA file cannot hold all pixels that its header tells; empty if it can.
std::string TgaDamage(const ImageFile& file);

}  // namespace tarnwick::images

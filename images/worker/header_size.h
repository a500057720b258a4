#pragma once

#include <optional>

#include "images/worker/image_file.h"

namespace tarnwick::images {

/// Whether the size of an image of that format can be told without loading it.
bool TellsSizeByHeader(FREE_IMAGE_FORMAT format);

/// Width, height and depth that the header of `file`, an image of the format `format`, tells. Nothing is allocated for
/// the pixels. Nothing if the header is none of that format. The file is rewound.
std::optional<HeaderSize> ReadHeaderSize(FREE_IMAGE_FORMAT format, const ImageFile& file);

}  // namespace tarnwick::images

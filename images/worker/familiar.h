#pragma once

#include "images/worker/image_file.h"

namespace tarnwick::images {

/// Whether `format` is one of those that people make textures from: PNG, JPEG, BMP, TGA, GIF, TIFF, PSD, DDS, EXR, HDR,
/// WebP, ICO. The library knows many more, each with a decoder that hostile files could use.
bool IsFamiliar(FREE_IMAGE_FORMAT format);

/// Which familiar format the first bytes of `file` are of; FIF_UNKNOWN for none. TGA files have no such bytes: the
/// header has to make sense as one.
FREE_IMAGE_FORMAT FamiliarFormatOf(const ImageFile& file);

}  // namespace tarnwick::images

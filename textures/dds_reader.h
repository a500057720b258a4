#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/image_view.h"
#include "textures/picture.h"

namespace tarnwick::textures {

/// The largest image of a DDS file.
struct DdsPicture {
  Picture Image;
  bool HoldsAlpha = false;   // by its format
  int64_t WantedBytes = 0;   // of its pixels, by the header
  int64_t MissingBytes = 0;  // of those, that the file lacks; these pixels are black
};

/// Reads the first image of a DDS file: blocks of DXT1, DXT3 and DXT5 (by either kind of header), and pixels of 8 to 32
/// bits whose channels the header names. Nothing, with the `reason`, if the file is none, is of another kind, or has a
/// side above LargestSide. Memory is taken for the pixels that the header tells.
std::optional<DdsPicture> ReadDds(core::ImageView file, std::string& reason);

}  // namespace tarnwick::textures

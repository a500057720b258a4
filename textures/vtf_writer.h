#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "textures/picture.h"
#include "textures/picture_encode.h"

namespace tarnwick::textures {

/// A texture to be written.
struct VtfSource {
  std::vector<std::vector<Picture>> Frames;  // of each frame all mip levels, the largest first, down to 1 by 1
  PixelFormat Format = PixelFormat::Dxt1;    // one that EncodePicture can write
  uint32_t Flags = 0;                        // VtfFlag; with VtfNoMips only the largest level is written
  float BumpScale = 1;
  FitEffort Effort = FitEffort::Best;
};

/// The mip levels that are written of `source`.
int WrittenMipLevels(const VtfSource& source);

/// Writes a texture file of version 7.2: header, low resolution image (DXT1, the first level of at most 16 by 16
/// pixels), image. The file goes piece by piece to `write`, which says whether it could take the piece; stops and
/// returns false when it could not. Reflectivity is the mean of all frames.
bool WriteVtf(const VtfSource& source, const std::function<bool(std::string_view)>& write);

}  // namespace tarnwick::textures

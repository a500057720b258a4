#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/image_view.h"
#include "textures/picture.h"

namespace tarnwick::view {

/// A texture as it is drawn: the first frame, face and slice of a file, decoded, with its mip levels.
struct Texture {
  std::vector<textures::Picture> Levels;  // the largest first, each half the size of the one before; never empty
  bool ClampS = false;
  bool ClampT = false;
  bool PointSample = false;
  bool UsesAlpha = false;  // whether any pixel of the first level is not fully opaque
  std::string Path = {};   // of the file, for people; "" for one that was made here

  size_t Bytes() const;
};

using SharedTexture = std::shared_ptr<const Texture>;

/// Decodes a texture file. Levels with a side above `largestSide` are passed over where the file has smaller ones (0:
/// none is); a file without smaller levels gets them made. Nothing, with `reason`, if it cannot be decoded or is an
/// environment map.
std::optional<Texture> DecodeTexture(core::ImageView file, int largestSide, std::string& reason);

/// What is drawn where a texture or material is missing: squares of magenta and black.
SharedTexture MissingPattern();

/// One pixel of that colour.
SharedTexture PlainTexture(textures::Bgra colour);

}  // namespace tarnwick::view

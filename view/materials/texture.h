#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/file_image.h"
#include "textures/picture.h"
#include "textures/stored_image.h"

namespace tarnwick::view {

/// A texture as it is drawn: the first frame, face and slice of a file with its mip levels. Levels of a block format
/// stay as the file has them, for the drivers that take them so; others are decoded.
struct Texture {
  /// The largest first, each half the size of the one before; never empty. All are of one format, either a block format
  /// or BGRA8888. Their bytes lie in Kept or in Made, and move with them.
  std::vector<textures::StoredImage> Levels;
  std::optional<core::FileImage> Kept = {};
  std::vector<std::vector<std::byte>> Made = {};
  bool ClampS = false;
  bool ClampT = false;
  bool PointSample = false;
  std::string Path = {};  // of the file, for people; "" for one that was made here

  /// The memory that it takes.
  size_t Bytes() const;
};

using SharedTexture = std::shared_ptr<const Texture>;

/// The pixels of a level, whatever its format.
textures::Picture DecodedLevel(const textures::StoredImage& level);

/// The texture in a file. Levels with a side above `largestSide` are passed over where the file has smaller ones (0:
/// none is); a file without smaller levels gets them made. Nothing, with `reason`, if it cannot be decoded or is an
/// environment map.
std::optional<Texture> ReadTexture(core::FileImage file, int largestSide, std::string& reason);

/// What is drawn where a texture or material is missing: squares of magenta and black.
SharedTexture MissingPattern();

/// One pixel of that colour.
SharedTexture PlainTexture(textures::Bgra colour);

}  // namespace tarnwick::view

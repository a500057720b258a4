#pragma once

#include <array>
#include <vector>

#include "textures/stored_image.h"

namespace tarnwick::textures {

/// Decoded pixels, topmost row first, each row from the left.
struct Picture {
  int Width = 0;
  int Height = 0;
  std::vector<Bgra> Pixels;
};

/// The largest side, in pixels, of a picture that is read. Its pixels then take 1 GiB at most.
inline constexpr int LargestSide = 16384;

/// Whether any pixel is not fully opaque.
bool UsesAlpha(const Picture& picture);

/// Mean red, green and blue in linear light, 0 to 1: of each channel c the mean of (c / 255) to the power of 2.2.
std::array<float, 3> Reflectivity(const Picture& picture);

/// What the colours of a picture mean, which tells how pixels are to be averaged.
enum class PictureKind { Colour, NormalMap };

/// The picture at half its width (if `halveWidth` and it is above 1) and half its height (likewise): each pixel is the
/// mean of the two or four that it stands for. In a normal map the mean's direction is kept and its length is made 1,
/// where red, green and blue from 0 to 255 stand for -1 to 1. Width and height that are halved are even.
Picture Halve(const Picture& picture, PictureKind kind, bool halveWidth, bool halveHeight);

/// All mip levels, the picture itself first, each half the size of the one before, down to 1 by 1. Width and height
/// are powers of two.
std::vector<Picture> MipChain(Picture picture, PictureKind kind);

}  // namespace tarnwick::textures

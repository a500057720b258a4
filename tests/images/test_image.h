#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarnwick::tests {

/// A colour with its alpha.
struct Rgba {
  uint8_t Red = 0;
  uint8_t Green = 0;
  uint8_t Blue = 0;
  uint8_t Alpha = 255;

  bool operator==(const Rgba&) const = default;
};

/// An image that a test has made or read, top row first.
struct TestImage {
  int Width = 0;
  int Height = 0;
  int Depth = 24;  // bits a pixel, as stored in its file
  std::vector<Rgba> Pixels;

  /// The pixel at `x`, `y`; throws, which ends the test, if there is none.
  const Rgba& At(int x, int y) const { return Pixels.at(static_cast<size_t>(y * Width + x)); }
};

/// An image of 8 (grey), 24 or 32 bits whose pixels `colour` gives.
TestImage MakeImage(int width, int height, int depth, const std::function<Rgba(int x, int y)>& colour);
/// An image whose red grows to the right and whose green grows downwards.
TestImage Gradient(int width, int height, int depth = 24);

/// Whether images of that name's format can be written: not every system has every codec.
bool HasFormat(const std::string& name);
/// Writes `image` in the format that the name of `path` asks for.
void WriteImage(const std::string& path, const TestImage& image);
/// Writes an image with 16 bits a channel, all pixels of one colour.
void WriteDeepImage(const std::string& path, int width, int height, Rgba colour);
/// Writes an image of floats, all pixels of one colour: red, green, blue, alpha, the last only where `alpha` says so.
void WriteFloatImage(const std::string& path, int width, int height, std::array<float, 4> colour, bool alpha);
/// The image at `path`; a test failure and an empty image if it cannot be read.
TestImage ReadImage(const std::string& path);

}  // namespace tarnwick::tests

#include "bench/plain_texture.h"

#include <cstring>

namespace tarnwick::bench {

namespace {

using textures::Bgra;
using textures::PixelFormat;
using textures::PixelLayout;

Bgra Expand(unsigned colour) {
  const unsigned b = colour & 31, g = colour >> 5 & 63, r = colour >> 11;
  return {static_cast<uint8_t>(b << 3 | b >> 2), static_cast<uint8_t>(g << 2 | g >> 4),
          static_cast<uint8_t>(r << 3 | r >> 2), 255};
}

Bgra Mix(Bgra a, Bgra b, int weightA, int weightB) {
  const int sum = weightA + weightB;
  const auto mix = [&](int x, int y) { return static_cast<uint8_t>((weightA * x + weightB * y) / sum); };
  return {mix(a.B, b.B), mix(a.G, b.G), mix(a.R, b.R), 255};
}

Bgra Colour(const uint8_t* block, int x, int y, bool threeColours) {
  const unsigned first = static_cast<unsigned>(block[0] | block[1] << 8);
  const unsigned second = static_cast<unsigned>(block[2] | block[3] << 8);
  const int choice = block[4 + y] >> (2 * x) & 3;
  if (choice == 0) return Expand(first);
  if (choice == 1) return Expand(second);
  if (threeColours && first <= second) {
    return choice == 2 ? Mix(Expand(first), Expand(second), 1, 1) : Bgra{0, 0, 0, 0};
  }
  return choice == 2 ? Mix(Expand(first), Expand(second), 2, 1) : Mix(Expand(first), Expand(second), 1, 2);
}

uint8_t Alpha(const uint8_t* block, int x, int y) {
  uint64_t bits;
  std::memcpy(&bits, block, 8);
  const int choice = static_cast<int>(bits >> (16 + 3 * (4 * y + x)) & 7);
  const int a = block[0], b = block[1];
  if (choice < 2) return block[choice];
  if (a > b) return static_cast<uint8_t>(((8 - choice) * a + (choice - 1) * b) / 7);
  if (choice > 5) return choice == 6 ? 0 : 255;
  return static_cast<uint8_t>(((6 - choice) * a + (choice - 1) * b) / 5);
}

template <typename PixelAt>
void ForEachPixel(const textures::StoredImage& image, PixelLayout layout, uint8_t* out, PixelAt pixelAt) {
  for (int y = image.Height - 1; y >= 0; --y) {
    for (int x = 0; x < image.Width; ++x) {
      const Bgra pixel = pixelAt(x, y);
      *out++ = pixel.B;
      *out++ = pixel.G;
      *out++ = pixel.R;
      if (layout == PixelLayout::Bgra32) *out++ = pixel.A;
    }
  }
}

}  // namespace

void DecodePlainly(const textures::StoredImage& image, PixelLayout layout, uint8_t* out) {
  const uint8_t* stored = reinterpret_cast<const uint8_t*>(image.Pixels.data());
  const int64_t blocksWide = (image.Width + 3) / 4;
  if (image.Format == PixelFormat::Dxt1) {
    ForEachPixel(image, layout, out,
                 [&](int x, int y) { return Colour(stored + (y / 4 * blocksWide + x / 4) * 8, x % 4, y % 4, true); });
  } else if (image.Format == PixelFormat::Dxt5) {
    ForEachPixel(image, layout, out, [&](int x, int y) {
      const uint8_t* block = stored + (y / 4 * blocksWide + x / 4) * 16;
      Bgra pixel = Colour(block + 8, x % 4, y % 4, false);
      pixel.A = Alpha(block, x % 4, y % 4);
      return pixel;
    });
  } else {
    ForEachPixel(image, layout, out, [&](int x, int y) {
      const uint8_t* at = stored + (int64_t{y} * image.Width + x) * 4;
      return Bgra{at[0], at[1], at[2], at[3]};
    });
  }
}

}  // namespace tarnwick::bench

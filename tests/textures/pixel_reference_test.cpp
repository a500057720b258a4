#include "support/pixel_reference.h"

#include <gtest/gtest.h>

#include <vector>

namespace tarnwick::textures {
namespace {

using tests::ReferencePixel;

std::vector<Bgra> Decode(PixelFormat format, int width, int height, const std::vector<int>& stored) {
  std::vector<std::byte> bytes;
  for (const int value : stored) bytes.push_back(std::byte(value));
  std::vector<Bgra> pixels;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) pixels.push_back(ReferencePixel({format, width, height, bytes}, x, y));
  }
  return pixels;
}

// The expected pixels are worked out by hand from the order that each name tells.
TEST(ReferencePixel, ReadsEachFormat) {
  struct Case {
    PixelFormat Format;
    std::vector<int> Stored;
    Bgra Expected;  // blue, green, red, alpha
  };
  const Case cases[] = {
      {PixelFormat::Rgba8888, {1, 2, 3, 4}, {3, 2, 1, 4}},
      {PixelFormat::Abgr8888, {1, 2, 3, 4}, {2, 3, 4, 1}},
      {PixelFormat::Argb8888, {1, 2, 3, 4}, {4, 3, 2, 1}},
      {PixelFormat::Bgra8888, {1, 2, 3, 4}, {1, 2, 3, 4}},
      {PixelFormat::Bgrx8888, {1, 2, 3, 4}, {1, 2, 3, 255}},
      {PixelFormat::Rgb888, {1, 2, 3}, {3, 2, 1, 255}},
      {PixelFormat::Bgr888, {1, 2, 3}, {1, 2, 3, 255}},
      {PixelFormat::Rgb888BlueScreen, {0, 0, 255}, {255, 0, 0, 0}},
      {PixelFormat::Rgb888BlueScreen, {1, 0, 255}, {255, 0, 1, 255}},
      {PixelFormat::Bgr888BlueScreen, {255, 0, 0}, {255, 0, 0, 0}},
      {PixelFormat::Bgr888BlueScreen, {0, 0, 255}, {0, 0, 255, 255}},
      {PixelFormat::I8, {7}, {7, 7, 7, 255}},
      {PixelFormat::Ia88, {7, 9}, {7, 7, 7, 9}},
      {PixelFormat::A8, {9}, {255, 255, 255, 9}},
      {PixelFormat::Uv88, {7, 9}, {0, 9, 7, 255}},
      {PixelFormat::Uvwq8888, {1, 2, 3, 4}, {3, 2, 1, 4}},
      {PixelFormat::Uvlx8888, {1, 2, 3, 4}, {3, 2, 1, 255}},
      {PixelFormat::Rgb565, {0x10, 0x04}, {0, 0x82, 0x84, 255}},  // red 16, green 32, blue 0
      {PixelFormat::Bgr565, {0x10, 0x04}, {0x84, 0x82, 0, 255}},
      {PixelFormat::Bgrx5551, {0x1F, 0x40}, {255, 0, 0x84, 255}},  // blue 31, red 16
      {PixelFormat::Bgra5551, {0x1F, 0x40}, {255, 0, 0x84, 0}},
      {PixelFormat::Bgra5551, {0xE0, 0x83}, {0, 255, 0, 255}},
      {PixelFormat::Bgra4444, {0x21, 0xF3}, {0x11, 0x22, 0x33, 0xFF}},
      {PixelFormat::Rgba16161616, {0, 0x80, 0xFF, 0xFF, 0x80, 0, 0x81, 0}, {0, 255, 128, 1}},
      // 0.5, 2, -1 and a not-a-number
      {PixelFormat::Rgba16161616F, {0, 0x38, 0, 0x40, 0, 0xBC, 1, 0x7C}, {0, 255, 128, 0}},
      // the smallest number above 0, 1, infinity, 1/255
      {PixelFormat::Rgba16161616F, {1, 0, 0, 0x3C, 0, 0x7C, 4, 0x1C}, {255, 255, 0, 1}},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(PixelFormatName(each.Format));
    const Bgra pixel = Decode(each.Format, 1, 1, each.Stored)[0];
    EXPECT_EQ(pixel.B, each.Expected.B);
    EXPECT_EQ(pixel.G, each.Expected.G);
    EXPECT_EQ(pixel.R, each.Expected.R);
    EXPECT_EQ(pixel.A, each.Expected.A);
  }
}

constexpr int RedLow = 0x00, RedHigh = 0xF8, BlueLow = 0x1F, BlueHigh = 0x00;

TEST(ReferencePixel, MixesTheColoursOfABlock) {
  const std::vector<int> choices = {0xE4, 0x55, 0xAA, 0xFF};  // the first row takes each choice in turn
  std::vector<int> four = {RedLow, RedHigh, BlueLow, BlueHigh};
  std::vector<int> three = {BlueLow, BlueHigh, RedLow, RedHigh};
  four.insert(four.end(), choices.begin(), choices.end());
  three.insert(three.end(), choices.begin(), choices.end());

  const auto opaque = Decode(PixelFormat::Dxt1, 4, 4, four);
  EXPECT_EQ(opaque[0], (Bgra{0, 0, 255, 255}));
  EXPECT_EQ(opaque[1], (Bgra{255, 0, 0, 255}));
  EXPECT_EQ(opaque[2], (Bgra{85, 0, 170, 255}));
  EXPECT_EQ(opaque[3], (Bgra{170, 0, 85, 255}));
  EXPECT_EQ(opaque[4], opaque[1]);
  EXPECT_EQ(opaque[15], opaque[3]);

  const auto transparent = Decode(PixelFormat::Dxt1OneBitAlpha, 4, 4, three);
  EXPECT_EQ(transparent[1], (Bgra{0, 0, 255, 255}));
  EXPECT_EQ(transparent[2], (Bgra{127, 0, 127, 255}));
  EXPECT_EQ(transparent[3], (Bgra{0, 0, 0, 0}));

  // The same colours in a DXT3 block are four, whatever their order.
  std::vector<int> dxt3 = {0x20, 0xF1, 0, 0, 0, 0, 0, 0xD0};
  dxt3.insert(dxt3.end(), three.begin(), three.end());
  const auto withAlpha = Decode(PixelFormat::Dxt3, 4, 4, dxt3);
  EXPECT_EQ(withAlpha[0], (Bgra{255, 0, 0, 0x00}));
  EXPECT_EQ(withAlpha[1], (Bgra{0, 0, 255, 0x22}));
  EXPECT_EQ(withAlpha[3], (Bgra{85, 0, 170, 0xFF}));
  EXPECT_EQ(withAlpha[15].A, 0xDD);
}

TEST(ReferencePixel, InterpolatesTheAlphaOfABlock) {
  // Choices 0 to 7 twice: 3 bits each, the first in the lowest bits.
  const std::vector<int> choices = {0x88, 0xC6, 0xFA, 0x88, 0xC6, 0xFA};
  const auto alphas = [&](int first, int second) {
    std::vector<int> block = {first, second};
    block.insert(block.end(), choices.begin(), choices.end());
    block.resize(16);
    std::vector<int> result;
    for (const Bgra& pixel : Decode(PixelFormat::Dxt5, 4, 4, block)) result.push_back(pixel.A);
    return result;
  };
  const std::vector<int> eight = {255, 3, 219, 183, 147, 111, 75, 39};
  const std::vector<int> six = {3, 255, 53, 103, 154, 204, 0, 255};
  std::vector<int> twice = eight;
  twice.insert(twice.end(), eight.begin(), eight.end());
  EXPECT_EQ(alphas(255, 3), twice);
  twice = six;
  twice.insert(twice.end(), six.begin(), six.end());
  EXPECT_EQ(alphas(3, 255), twice);
}

TEST(ReferencePixel, FindsTheBlockOfAPixelInAnImageOfPartialBlocks) {
  // 5 by 6 pixels are 2 by 2 blocks, each of one grey.
  std::vector<int> blocks;
  for (const int green : {1, 2, 3, 4}) {
    blocks.insert(blocks.end(), {green << 5, 0, 0, 0, 0, 0, 0, 0});
  }
  const auto pixels = Decode(PixelFormat::Dxt1, 5, 6, blocks);
  EXPECT_EQ(pixels[3 * 5 + 3].G, 4);
  EXPECT_EQ(pixels[3 * 5 + 4].G, 8);
  EXPECT_EQ(pixels[4 * 5 + 3].G, 12);
  EXPECT_EQ(pixels[5 * 5 + 4].G, 16);
}

}  // namespace
}  // namespace tarnwick::textures

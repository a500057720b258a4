#include "textures/pixel_rows.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "support/pixel_reference.h"
#include "textures/dxt_rows.h"

namespace tarnwick::textures {
namespace {

using tests::ReferencePixel;

using RowDecoder = void (*)(const StoredImage&, int, int, PixelLayout, uint8_t*, ptrdiff_t);

/// Decodes `image` lowest row first, as a TGA file has it, in two bands, and compares each pixel with the reference
/// and the bytes around the image with what they were.
void ExpectLikeReference(const StoredImage& image, PixelLayout layout, RowDecoder decode) {
  constexpr uint8_t Guard = 0xA5;
  constexpr size_t Margin = 32;
  const size_t pixelBytes = static_cast<size_t>(BytesPerPixel(layout));
  const size_t rowBytes = static_cast<size_t>(image.Width) * pixelBytes;
  const size_t rows = static_cast<size_t>(image.Height);
  std::vector<uint8_t> out(rowBytes * rows + 2 * Margin, Guard);
  const auto rowAt = [&](int y) { return out.data() + Margin + static_cast<size_t>(image.Height - 1 - y) * rowBytes; };
  const int firstBand = image.Height > 4 ? 4 : image.Height;
  if (image.Height > 4) decode(image, 4, image.Height - 4, layout, rowAt(4), -static_cast<ptrdiff_t>(rowBytes));
  decode(image, 0, firstBand, layout, rowAt(0), -static_cast<ptrdiff_t>(rowBytes));

  for (int y = 0; y < image.Height; ++y) {
    for (int x = 0; x < image.Width; ++x) {
      const Bgra expected = ReferencePixel(image, x, y);
      const uint8_t* got = rowAt(y) + static_cast<size_t>(x) * pixelBytes;
      const uint8_t alpha = layout == PixelLayout::Bgra32 ? got[3] : expected.A;
      ASSERT_EQ((Bgra{got[0], got[1], got[2], alpha}), expected) << "column " << x << ", row " << y;
    }
  }
  for (size_t i = 0; i < Margin; ++i) {
    ASSERT_EQ(out[i], Guard);
    ASSERT_EQ(out[out.size() - 1 - i], Guard);
  }
}

std::vector<std::byte> RandomBytes(int64_t count, uint32_t seed) {
  std::mt19937 random(seed);
  std::vector<std::byte> bytes(static_cast<size_t>(count));
  for (std::byte& byte : bytes) byte = std::byte(random() & 255);
  return bytes;
}

TEST(DecodeRows, GivesWhatTheReferenceGivesInEveryFormatAndSize) {
  constexpr int Sizes[][2] = {{1, 1}, {2, 3}, {4, 4}, {5, 9}, {16, 8}, {37, 18}, {64, 12}};
  for (int number = 0; number <= static_cast<int>(PixelFormat::Uvlx8888); ++number) {
    const PixelFormatFacts& facts = *FindPixelFormat(PixelFormat{number});
    if (facts.BytesPerUnit == 0) continue;
    for (const auto& [width, height] : Sizes) {
      const auto bytes = RandomBytes(ImageBytes(facts, width, height), static_cast<uint32_t>(number * 100 + width));
      for (const PixelLayout layout : {PixelLayout::Bgr24, PixelLayout::Bgra32}) {
        SCOPED_TRACE(std::string(facts.Name) + " " + std::to_string(width) + " x " + std::to_string(height));
        const StoredImage image{facts.Format, width, height, bytes};
        ExpectLikeReference(image, layout, DecodeRows);
        if (facts.Blocks) ExpectLikeReference(image, layout, DecodeDxtRowsPortable);
      }
    }
  }
}

TEST(DecodeRows, GivesWhatTheReferenceGivesForEveryPairOfEnds) {
  std::vector<std::byte> alphaBlocks;
  std::vector<std::byte> colourBlocks;
  const auto add = [](std::vector<std::byte>& blocks, std::initializer_list<int> bytes) {
    for (const int byte : bytes) blocks.push_back(std::byte(byte));
  };
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      add(alphaBlocks, {first, second, 0x88, 0xC6, 0xFA, 0x88, 0xC6, 0xFA, 0, 0, 0, 0, 0, 0, 0, 0});
    }
  }
  for (int first = 0; first < 64; ++first) {
    for (int second = 0; second < 64; ++second) {
      const int a = (first & 31) | first << 5 | (first & 31) << 11;
      const int b = (second & 31) | second << 5 | (second & 31) << 11;
      add(colourBlocks, {a & 255, a >> 8, b & 255, b >> 8, 0xE4, 0xE4, 0xE4, 0xE4});
    }
  }
  for (const RowDecoder decode : {DecodeDxtRows, DecodeDxtRowsPortable}) {
    ExpectLikeReference({PixelFormat::Dxt5, 1024, 1024, alphaBlocks}, PixelLayout::Bgra32, decode);
    ExpectLikeReference({PixelFormat::Dxt1, 256, 256, colourBlocks}, PixelLayout::Bgra32, decode);
    ExpectLikeReference({PixelFormat::Dxt1, 256, 256, colourBlocks}, PixelLayout::Bgr24, decode);
  }
}

TEST(LayoutFor, KeepsAlphaOfDxt1OnlyWhereAPixelOfTheImageUsesIt) {
  // Three colours, the choices of the block's rows as given.
  const auto layout = [](int width, int height, int first, std::initializer_list<int> rows) {
    std::vector<std::byte> block = {std::byte(first), std::byte{0}, std::byte{8}, std::byte{0}};
    for (const int row : rows) block.push_back(std::byte(row));
    return LayoutFor({PixelFormat::Dxt1, width, height, block});
  };
  EXPECT_EQ(layout(4, 4, 8, {0, 0, 0xC0, 0}), PixelLayout::Bgra32);
  EXPECT_EQ(layout(4, 4, 9, {0, 0, 0xC0, 0}), PixelLayout::Bgr24);     // four colours
  EXPECT_EQ(layout(4, 4, 8, {0, 0, 0x55, 0xAA}), PixelLayout::Bgr24);  // nobody chooses the fourth
  EXPECT_EQ(layout(3, 4, 8, {0, 0, 0xC0, 0}), PixelLayout::Bgr24);     // only a pixel beyond the edge does
  EXPECT_EQ(layout(4, 2, 8, {0, 0, 0xC0, 0}), PixelLayout::Bgr24);
  EXPECT_EQ(layout(3, 3, 8, {0, 0, 0x30, 0}), PixelLayout::Bgra32);
}

}  // namespace
}  // namespace tarnwick::textures

#include "textures/dxt_rows.h"

#include <algorithm>
#include <cstring>

#include "textures/dxt_rows_ssse3.h"
#include "textures/simd.h"

namespace tarnwick::textures {

namespace {

uint32_t Pack(uint32_t b, uint32_t g, uint32_t r, uint32_t a) {
  return b | g << 8 | r << 16 | a << 24;
}

/// The four colours of a block, alpha 255 or, of the transparent one, 0.
void ColoursOf(const uint8_t* block, bool threeColours, uint32_t (&colours)[4]) {
  const uint32_t first = block[0] | uint32_t{block[1]} << 8;
  const uint32_t second = block[2] | uint32_t{block[3]} << 8;
  const auto blue = [](uint32_t c) { return (c & 31) * 33 >> 2; };
  const auto green = [](uint32_t c) { return (c >> 5 & 63) * 65 >> 4; };
  const auto red = [](uint32_t c) { return (c >> 11) * 33 >> 2; };
  const uint32_t b0 = blue(first), g0 = green(first), r0 = red(first);
  const uint32_t b1 = blue(second), g1 = green(second), r1 = red(second);
  colours[0] = Pack(b0, g0, r0, 255);
  colours[1] = Pack(b1, g1, r1, 255);
  if (threeColours && first <= second) {
    colours[2] = Pack((b0 + b1) / 2, (g0 + g1) / 2, (r0 + r1) / 2, 255);
    colours[3] = 0;
  } else {
    colours[2] = Pack((2 * b0 + b1) / 3, (2 * g0 + g1) / 3, (2 * r0 + r1) / 3, 255);
    colours[3] = Pack((b0 + 2 * b1) / 3, (g0 + 2 * g1) / 3, (r0 + 2 * r1) / 3, 255);
  }
}

void AlphasOf(const uint8_t* block, uint32_t (&alphas)[8]) {
  const uint32_t a = block[0];
  const uint32_t b = block[1];
  const uint32_t steps = a > b ? 7 : 5;
  alphas[0] = a;
  alphas[1] = b;
  for (uint32_t i = 1; i < steps; ++i) alphas[i + 1] = ((steps - i) * a + i * b) / steps;
  if (steps == 7) return;
  alphas[6] = 0;
  alphas[7] = 255;
}

void DecodeBlock(PixelFormat format, const uint8_t* block, uint32_t (&pixels)[16]) {
  const bool dxt1 = format == PixelFormat::Dxt1 || format == PixelFormat::Dxt1OneBitAlpha;
  const uint8_t* colourBlock = dxt1 ? block : block + 8;
  uint32_t colours[4];
  ColoursOf(colourBlock, dxt1, colours);
  uint32_t choices;
  std::memcpy(&choices, colourBlock + 4, sizeof choices);
  for (int i = 0; i < 16; ++i) pixels[i] = colours[choices >> (2 * i) & 3];
  if (dxt1) return;

  uint64_t bits;
  std::memcpy(&bits, block, sizeof bits);
  if (format == PixelFormat::Dxt3) {
    for (int i = 0; i < 16; ++i) {
      const auto alpha = static_cast<uint32_t>(bits >> (4 * i) & 15) * 17;
      pixels[i] = (pixels[i] & 0xFFFFFF) | alpha << 24;
    }
    return;
  }
  uint32_t alphas[8];
  AlphasOf(block, alphas);
  for (int i = 0; i < 16; ++i) pixels[i] = (pixels[i] & 0xFFFFFF) | alphas[bits >> (16 + 3 * i) & 7] << 24;
}

void CopyPixels(const uint32_t* pixels, int count, PixelLayout layout, uint8_t* out) {
  if (layout == PixelLayout::Bgra32) {
    std::memcpy(out, pixels, static_cast<size_t>(count) * 4);
    return;
  }
  for (int i = 0; i < count; ++i) std::memcpy(out + 3 * i, pixels + i, 3);
}

void DecodeRowsPortably(const StoredImage& image, int firstBlock, int firstRow, int rows, PixelLayout layout,
                        uint8_t* out, ptrdiff_t stride) {
  const int blockBytes = FindPixelFormat(image.Format)->BytesPerUnit;
  const int blocksWide = (image.Width + 3) / 4;
  for (int row = 0; row < rows; row += 4) {
    const int64_t lineOfBlocks = int64_t{(firstRow + row) / 4} * blocksWide;
    const int high = std::min(4, rows - row);
    for (int column = firstBlock; column < blocksWide; ++column) {
      uint32_t pixels[16];
      const std::byte* block = image.Pixels.data() + (lineOfBlocks + column) * blockBytes;
      DecodeBlock(image.Format, reinterpret_cast<const uint8_t*>(block), pixels);
      const int wide = std::min(4, image.Width - 4 * column);
      for (int y = 0; y < high; ++y) {
        CopyPixels(pixels + 4 * y, wide, layout, out + (row + y) * stride + 4 * column * BytesPerPixel(layout));
      }
    }
  }
}

}  // namespace

bool Dxt1UsesAlpha(const StoredImage& image) {
  const int blocksWide = (image.Width + 3) / 4;
  const int blocksHigh = (image.Height + 3) / 4;
  const uint8_t* block = reinterpret_cast<const uint8_t*>(image.Pixels.data());
  for (int blockRow = 0; blockRow < blocksHigh; ++blockRow) {
    const int high = std::min(4, image.Height - 4 * blockRow);
    const uint32_t seenRows = high == 4 ? 0x55555555 : (uint32_t{1} << (8 * high)) / 3;  // 2 bits a pixel: 0x5555...
    const int wide = image.Width % 4;
    const uint32_t lastColumn = wide == 0 ? 0xFFFFFFFF : 0x01010101 * ((1u << (2 * wide)) - 1);
    uint32_t found = 0;
    for (int column = 0; column < blocksWide; ++column, block += 8) {
      uint32_t colours;
      uint32_t choices;
      std::memcpy(&colours, block, sizeof colours);
      std::memcpy(&choices, block + 4, sizeof choices);
      const uint32_t seen = column + 1 == blocksWide ? seenRows & lastColumn : seenRows;
      const uint32_t threeColours = (colours & 0xFFFF) <= colours >> 16 ? 0xFFFFFFFF : 0;
      found |= choices & choices >> 1 & seen & threeColours;
    }
    if (found != 0) return true;
  }
  return false;
}

void DecodeDxtRowsPortable(const StoredImage& image, int firstRow, int rows, PixelLayout layout, uint8_t* out,
                           ptrdiff_t stride) {
  DecodeRowsPortably(image, 0, firstRow, rows, layout, out, stride);
}

void DecodeDxtRows(const StoredImage& image, int firstRow, int rows, PixelLayout layout, uint8_t* out,
                   ptrdiff_t stride) {
  int done = 0;
#if TARNWICK_HAS_SSSE3_CODE
  const bool wide = layout == PixelLayout::Bgra32;
  const bool served = wide || FindPixelFormat(image.Format)->BytesPerUnit == 8;
  // Only whole blocks; a row of 24-bit pixels is stored with 4 bytes too many, which must stay inside the image's row.
  const int blocks = wide ? image.Width / 4 : (3 * image.Width - 4) / 12;
  done = HasSsse3() && served && rows % 4 == 0 ? blocks : 0;
  if (done > 0) DecodeDxtBlocksSsse3(image, done, firstRow, rows, layout, out, stride);
#endif
  DecodeRowsPortably(image, done, firstRow, rows, layout, out, stride);
}

}  // namespace tarnwick::textures

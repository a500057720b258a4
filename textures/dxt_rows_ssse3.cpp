#include "textures/dxt_rows_ssse3.h"

#include <array>
#include <cstring>

#include "textures/simd.h"

#if TARNWICK_HAS_SSSE3_CODE

namespace tarnwick::textures {

// A block's four colours fit into one register, and the two bits of a pixel choose among them: a row of four pixels is
// one byte shuffle, whose control is looked up by the row's byte of choices.

namespace {

using Shuffle = std::array<uint8_t, 16>;

constexpr uint8_t Blank = 0x80;  // in a shuffle: a zero byte

/// For each byte of four choices the shuffle that picks four pixels out of the four colours.
constexpr std::array<Shuffle, 256> RowShuffles(int bytesPerPixel) {
  std::array<Shuffle, 256> shuffles{};
  for (size_t choices = 0; choices < 256; ++choices) {
    shuffles[choices].fill(Blank);
    for (size_t pixel = 0; pixel < 4; ++pixel) {
      const size_t colour = choices >> (2 * pixel) & 3;
      for (size_t channel = 0; channel < static_cast<size_t>(bytesPerPixel); ++channel) {
        shuffles[choices][pixel * static_cast<size_t>(bytesPerPixel) + channel] =
            static_cast<uint8_t>(4 * colour + channel);
      }
    }
  }
  return shuffles;
}

constexpr std::array<Shuffle, 256> RowShuffles24 = RowShuffles(3);
constexpr std::array<Shuffle, 256> RowShuffles32 = RowShuffles(4);

/// The two end colours as 16-bit lanes: blue, green, red, 0 of the first, then of the second.
TARNWICK_SSSE3 inline __m128i EndColours(uint32_t both) {
  __m128i lanes = _mm_cvtsi32_si128(static_cast<int>(both));
  lanes = _mm_unpacklo_epi16(lanes, lanes);
  lanes = _mm_shuffle_epi32(lanes, _MM_SHUFFLE(1, 1, 0, 0));
  lanes = _mm_and_si128(lanes, _mm_setr_epi16(0x001F, 0x07E0, -0x800, 0, 0x001F, 0x07E0, -0x800, 0));
  // Each channel to the top of its lane, then stretched: 33/4 times 5 bits, 65/16 times 6 bits, rounded down.
  lanes = _mm_mullo_epi16(lanes, _mm_setr_epi16(1 << 11, 1 << 5, 1, 0, 1 << 11, 1 << 5, 1, 0));
  return _mm_mulhi_epu16(lanes, _mm_setr_epi16(264, 260, 264, 0, 264, 260, 264, 0));
}

/// The four colours as bytes; alpha is 0.
TARNWICK_SSSE3 inline __m128i FourColours(__m128i ends) {
  const __m128i swapped = _mm_shuffle_epi32(ends, _MM_SHUFFLE(1, 0, 3, 2));
  const __m128i sums = _mm_add_epi16(_mm_add_epi16(ends, ends), swapped);
  // 0x5556 / 65536 is so little above a third that up to 765 the result is the third rounded down.
  return _mm_packus_epi16(ends, _mm_mulhi_epu16(sums, _mm_set1_epi16(0x5556)));
}

/// The two colours, the one between, and transparent black; alpha is 0.
TARNWICK_SSSE3 inline __m128i ThreeColours(__m128i ends) {
  const __m128i swapped = _mm_shuffle_epi32(ends, _MM_SHUFFLE(1, 0, 3, 2));
  return _mm_packus_epi16(ends, _mm_move_epi64(_mm_srli_epi16(_mm_add_epi16(ends, swapped), 1)));
}

/// The 16 alpha values of a DXT3 block, whose first half holds 4 bits for each.
TARNWICK_SSSE3 inline __m128i AlphasOfDxt3(__m128i block) {
  const __m128i low = _mm_set1_epi8(15);
  const __m128i even = _mm_and_si128(block, low);
  const __m128i odd = _mm_and_si128(_mm_srli_epi16(block, 4), low);
  const __m128i values = _mm_unpacklo_epi8(even, odd);
  return _mm_or_si128(values, _mm_slli_epi16(values, 4));
}

/// Weights of the two ends in each of the 8 values, what divides their sum (65536 / n, rounded up), and what is set.
struct AlphaRule {
  int8_t Weights[16];
  uint16_t Reciprocal[8];
  uint8_t Set[16];
};
constexpr uint16_t Seventh = 9363;
constexpr uint16_t Fifth = 13108;
constexpr AlphaRule AlphaRules[2] = {
    {{5, 0, 0, 5, 4, 1, 3, 2, 2, 3, 1, 4, 0, 0, 0, 0},
     {Fifth, Fifth, Fifth, Fifth, Fifth, Fifth, Fifth, Fifth},
     {0, 0, 0, 0, 0, 0, 0, 255}},
    {{7, 0, 0, 7, 6, 1, 5, 2, 4, 3, 3, 4, 2, 5, 1, 6},
     {Seventh, Seventh, Seventh, Seventh, Seventh, Seventh, Seventh, Seventh},
     {}},
};

/// The 16 alpha values of a DXT5 block.
TARNWICK_SSSE3 inline __m128i AlphasOfDxt5(__m128i block) {
  const int ends = _mm_cvtsi128_si32(block) & 0xFFFF;
  const AlphaRule& rule = AlphaRules[(ends & 0xFF) > ends >> 8 ? 1 : 0];
  const __m128i sums = _mm_maddubs_epi16(_mm_set1_epi16(static_cast<int16_t>(ends)), Load16(rule.Weights));
  const __m128i values = _mm_mulhi_epu16(sums, Load16(rule.Reciprocal));
  const __m128i palette = _mm_or_si128(_mm_packus_epi16(values, values), Load16(rule.Set));

  // Each lane gets the two bytes that hold the 3 bits of its pixel; the multiplication brings them to the lane's top.
  const __m128i toTop = _mm_setr_epi16(1 << 13, 1 << 10, 1 << 7, 1 << 12, 1 << 9, 1 << 6, 1 << 11, 1 << 8);
  const __m128i first = _mm_shuffle_epi8(block, _mm_setr_epi8(2, 3, 2, 3, 2, 3, 3, 4, 3, 4, 3, 4, 4, 5, 4, 5));
  const __m128i second = _mm_shuffle_epi8(block, _mm_setr_epi8(5, 6, 5, 6, 5, 6, 6, 7, 6, 7, 6, 7, 7, 8, 7, 8));
  const __m128i choices = _mm_packus_epi16(_mm_srli_epi16(_mm_mullo_epi16(first, toTop), 13),
                                           _mm_srli_epi16(_mm_mullo_epi16(second, toTop), 13));
  return _mm_shuffle_epi8(palette, choices);
}

struct BlockLine {
  const uint8_t* Blocks;
  int Count;
  uint8_t* Out;
  ptrdiff_t Stride;
};

template <PixelLayout Layout>
TARNWICK_SSSE3 void DecodeDxt1(const BlockLine& line) {
  constexpr const std::array<Shuffle, 256>& shuffles = Layout == PixelLayout::Bgra32 ? RowShuffles32 : RowShuffles24;
  const __m128i opaque = _mm_set1_epi32(-1 << 24);
  const __m128i threeOpaque = _mm_setr_epi32(-1 << 24, -1 << 24, -1 << 24, 0);
  uint8_t* out = line.Out;
  for (int i = 0; i < line.Count; ++i, out += 4 * BytesPerPixel(Layout)) {
    const uint8_t* block = line.Blocks + 8 * i;
    uint32_t both;
    std::memcpy(&both, block, sizeof both);
    const __m128i ends = EndColours(both);
    const __m128i colours = (both & 0xFFFF) > both >> 16 ? _mm_or_si128(FourColours(ends), opaque)
                                                         : _mm_or_si128(ThreeColours(ends), threeOpaque);
    for (int y = 0; y < 4; ++y) {
      Store16(out + y * line.Stride, _mm_shuffle_epi8(colours, Load16(shuffles[block[4 + y]].data())));
    }
  }
}

template <PixelFormat Format>
TARNWICK_SSSE3 void DecodeWithAlpha(const BlockLine& line) {
  // Alpha of row y to the last byte of each pixel.
  const __m128i firstRow =
      _mm_setr_epi8(-128, -128, -128, 0, -128, -128, -128, 1, -128, -128, -128, 2, -128, -128, -128, 3);
  const __m128i nextRow = _mm_set1_epi32(4 << 24);
  uint8_t* out = line.Out;
  for (int i = 0; i < line.Count; ++i, out += 16) {
    const uint8_t* block = line.Blocks + 16 * i;
    uint32_t both;
    std::memcpy(&both, block + 8, sizeof both);
    const __m128i colours = FourColours(EndColours(both));
    const __m128i alphas = Format == PixelFormat::Dxt5 ? AlphasOfDxt5(Load16(block)) : AlphasOfDxt3(Load16(block));
    __m128i row = firstRow;
    for (int y = 0; y < 4; ++y) {
      const __m128i pixels = _mm_shuffle_epi8(colours, Load16(RowShuffles32[block[12 + y]].data()));
      Store16(out + y * line.Stride, _mm_or_si128(pixels, _mm_shuffle_epi8(alphas, row)));
      row = _mm_add_epi8(row, nextRow);
    }
  }
}

}  // namespace

void DecodeDxtBlocksSsse3(const StoredImage& image, int blocks, int firstRow, int rows, PixelLayout layout,
                          uint8_t* out, ptrdiff_t stride) {
  const int64_t lineBytes = int64_t{(image.Width + 3) / 4} * FindPixelFormat(image.Format)->BytesPerUnit;
  for (int row = 0; row < rows; row += 4) {
    const std::byte* line = image.Pixels.data() + (firstRow + row) / 4 * lineBytes;
    const BlockLine work{reinterpret_cast<const uint8_t*>(line), blocks, out + row * stride, stride};
    if (image.Format == PixelFormat::Dxt5) {
      DecodeWithAlpha<PixelFormat::Dxt5>(work);
    } else if (image.Format == PixelFormat::Dxt3) {
      DecodeWithAlpha<PixelFormat::Dxt3>(work);
    } else if (layout == PixelLayout::Bgra32) {
      DecodeDxt1<PixelLayout::Bgra32>(work);
    } else {
      DecodeDxt1<PixelLayout::Bgr24>(work);
    }
  }
}

}  // namespace tarnwick::textures

#endif

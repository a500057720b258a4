#include "textures/packed_rows.h"

#include <cmath>
#include <cstring>
#include <vector>

namespace tarnwick::textures {

namespace {

/// Where a channel lies in a 16-bit pixel; no bits: it is not stored, and 255.
struct Field {
  int Shift;
  int Bits;
};

template <Field Channel>
uint32_t Stretch(uint32_t pixel) {
  if constexpr (Channel.Bits == 0) return 255;
  const uint32_t value = pixel >> Channel.Shift & ((1u << Channel.Bits) - 1);
  if constexpr (Channel.Bits == 6) return value * 65 >> 4;
  if constexpr (Channel.Bits == 5) return value * 33 >> 2;
  if constexpr (Channel.Bits == 4) return value * 17;
  return value * 255;
}

/// Calls `decode(from)`, which gives a pixel as 0xAARRGGBB, for each pixel of `stored` bytes.
template <int Stored, typename Decode>
void ForEachPixel(const uint8_t* from, int count, PixelLayout layout, uint8_t* to, Decode decode) {
  if (layout == PixelLayout::Bgra32) {
    for (int i = 0; i < count; ++i) {
      const uint32_t pixel = decode(from + int64_t{i} * Stored);
      std::memcpy(to + int64_t{i} * 4, &pixel, 4);
    }
    return;
  }
  for (int i = 0; i < count; ++i) {
    const uint32_t pixel = decode(from + int64_t{i} * Stored);
    std::memcpy(to + int64_t{i} * 3, &pixel, 3);
  }
}

template <Field B, Field G, Field R, Field A>
void Decode16(const uint8_t* from, int count, PixelLayout layout, uint8_t* to) {
  ForEachPixel<2>(from, count, layout, to, [](const uint8_t* at) {
    uint16_t pixel;
    std::memcpy(&pixel, at, 2);
    return Stretch<B>(pixel) | Stretch<G>(pixel) << 8 | Stretch<R>(pixel) << 16 | Stretch<A>(pixel) << 24;
  });
}

/// Decodes pixels of four 16-bit channels, red first, each turned into a byte by `toByte`.
template <typename ToByte>
void Decode64(const uint8_t* from, int count, PixelLayout layout, uint8_t* to, ToByte toByte) {
  ForEachPixel<8>(from, count, layout, to, [&](const uint8_t* at) {
    uint16_t channels[4];
    std::memcpy(channels, at, 8);
    return uint32_t{toByte(channels[2])} | uint32_t{toByte(channels[1])} << 8 | uint32_t{toByte(channels[0])} << 16 |
           uint32_t{toByte(channels[3])} << 24;
  });
}

constexpr uint16_t HalfOne = 0x3C00;
constexpr uint16_t HalfInfinity = 0x7C00;

/// The bytes of the half floats from 0 to 1, whose bit patterns count up with their values.
const std::vector<uint8_t>& BytesOfHalves() {
  static const std::vector<uint8_t> bytes = [] {
    std::vector<uint8_t> table(HalfOne + 1);
    for (unsigned half = 0; half <= HalfOne; ++half) {
      const int exponent = static_cast<int>(half >> 10);
      const int mantissa = static_cast<int>(half & 1023);
      const float value = exponent == 0 ? std::ldexp(static_cast<float>(mantissa), -24)
                                        : std::ldexp(static_cast<float>(1024 + mantissa), exponent - 25);
      table[half] = static_cast<uint8_t>(std::lround(value * 255));
    }
    return table;
  }();
  return bytes;
}

}  // namespace

bool DecodePacked(PixelFormat format, const uint8_t* from, int count, PixelLayout layout, uint8_t* to) {
  switch (format) {
    case PixelFormat::Rgb565:
      Decode16<Field{11, 5}, Field{5, 6}, Field{0, 5}, Field{0, 0}>(from, count, layout, to);
      return true;
    case PixelFormat::Bgr565:
      Decode16<Field{0, 5}, Field{5, 6}, Field{11, 5}, Field{0, 0}>(from, count, layout, to);
      return true;
    case PixelFormat::Bgrx5551:
      Decode16<Field{0, 5}, Field{5, 5}, Field{10, 5}, Field{0, 0}>(from, count, layout, to);
      return true;
    case PixelFormat::Bgra5551:
      Decode16<Field{0, 5}, Field{5, 5}, Field{10, 5}, Field{15, 1}>(from, count, layout, to);
      return true;
    case PixelFormat::Bgra4444:
      Decode16<Field{0, 4}, Field{4, 4}, Field{8, 4}, Field{12, 4}>(from, count, layout, to);
      return true;
    case PixelFormat::Rgba16161616:
      // v / 257 rounded, as v * 255 / 65535 is.
      Decode64(from, count, layout, to,
               [](uint32_t value) { return static_cast<uint8_t>((value * 255 + 32767) / 65535); });
      return true;
    case PixelFormat::Rgba16161616F: {
      const uint8_t* bytes = BytesOfHalves().data();
      Decode64(from, count, layout, to, [bytes](uint16_t half) {
        if (half <= HalfOne) return bytes[half];
        return half <= HalfInfinity ? uint8_t{255} : uint8_t{0};  // above: not a number, or a sign
      });
      return true;
    }
    default:
      return false;
  }
}

}  // namespace tarnwick::textures

#include "support/pixel_reference.h"

#include <cmath>

namespace tarnwick::tests {

using namespace textures;

namespace {

uint8_t Byte(std::byte value) {
  return std::to_integer<uint8_t>(value);
}

unsigned Word(const std::byte* at) {
  return std::to_integer<unsigned>(at[0]) | std::to_integer<unsigned>(at[1]) << 8;
}

/// `bits` bits of `value` from bit `shift` on, stretched to 0 to 255.
uint8_t Channel(unsigned value, int shift, int bits) {
  const unsigned channel = value >> shift & ((1u << bits) - 1);
  unsigned stretched = channel << (8 - bits);
  for (int filled = bits; filled < 8; filled *= 2) stretched |= stretched >> filled;
  return static_cast<uint8_t>(stretched);
}

Bgra From565(unsigned value) {
  return {Channel(value, 0, 5), Channel(value, 5, 6), Channel(value, 11, 5), 255};
}

uint8_t From16(const std::byte* at) {
  return static_cast<uint8_t>((Word(at) * 255 + 32767) / 65535);
}

uint8_t FromHalf(const std::byte* at) {
  const unsigned half = Word(at);
  const int exponent = static_cast<int>(half >> 10 & 31);
  const int mantissa = static_cast<int>(half & 1023);
  if ((half & 0x8000) != 0 || (exponent == 31 && mantissa != 0)) return 0;
  const double value = exponent == 0 ? std::ldexp(mantissa, -24) : std::ldexp(1024 + mantissa, exponent - 25);
  return value >= 1 ? 255 : static_cast<uint8_t>(value * 255 + 0.5);
}

Bgra BlockColour(const std::byte* block, int pixel, bool threeColours) {
  const unsigned first = Word(block);
  const unsigned second = Word(block + 2);
  const unsigned choice = std::to_integer<unsigned>(block[4 + pixel / 4]) >> (pixel % 4 * 2) & 3;
  const Bgra a = From565(first);
  const Bgra b = From565(second);
  if (choice == 0) return a;
  if (choice == 1) return b;
  if (threeColours && first <= second) {
    if (choice == 3) return {0, 0, 0, 0};
    const auto half = [](int x, int y) { return static_cast<uint8_t>((x + y) / 2); };
    return {half(a.B, b.B), half(a.G, b.G), half(a.R, b.R), 255};
  }
  const auto third = [&](int x, int y) {
    return static_cast<uint8_t>(choice == 2 ? (2 * x + y) / 3 : (x + 2 * y) / 3);
  };
  return {third(a.B, b.B), third(a.G, b.G), third(a.R, b.R), 255};
}

/// Alpha of a DXT5 block: two values and a choice of 3 bits for each pixel between them.
uint8_t BlockAlpha(const std::byte* block, int pixel) {
  uint64_t choices = 0;
  for (int i = 0; i < 6; ++i) choices |= uint64_t{Byte(block[2 + i])} << (8 * i);
  const int choice = static_cast<int>(choices >> (3 * pixel) & 7);
  const int a = Byte(block[0]);
  const int b = Byte(block[1]);
  if (choice == 0) return Byte(block[0]);
  if (choice == 1) return Byte(block[1]);
  if (a > b) return static_cast<uint8_t>(((8 - choice) * a + (choice - 1) * b) / 7);
  if (choice == 6) return 0;
  if (choice == 7) return 255;
  return static_cast<uint8_t>(((6 - choice) * a + (choice - 1) * b) / 5);
}

Bgra BlueKeyed(Bgra pixel) {
  if (pixel == Bgra{255, 0, 0, 255}) pixel.A = 0;
  return pixel;
}

}  // namespace

Bgra ReferencePixel(const StoredImage& image, int x, int y) {
  const PixelFormatFacts* facts = FindPixelFormat(image.Format);
  if (facts->Blocks) {
    const int64_t index = int64_t{y / 4} * ((image.Width + 3) / 4) + x / 4;
    const std::byte* block = image.Pixels.data() + index * facts->BytesPerUnit;
    const int pixel = y % 4 * 4 + x % 4;
    if (facts->BytesPerUnit == 8) return BlockColour(block, pixel, true);
    Bgra colour = BlockColour(block + 8, pixel, false);
    if (image.Format == PixelFormat::Dxt5) {
      colour.A = BlockAlpha(block, pixel);
    } else {
      colour.A = static_cast<uint8_t>((std::to_integer<unsigned>(block[pixel / 2]) >> (pixel % 2 * 4) & 15) * 17);
    }
    return colour;
  }

  const std::byte* at = image.Pixels.data() + (int64_t{y} * image.Width + x) * facts->BytesPerUnit;
  const auto byte = [at](int index) { return Byte(at[index]); };
  switch (image.Format) {
    case PixelFormat::Rgba8888:
    case PixelFormat::Uvwq8888:
      return {byte(2), byte(1), byte(0), byte(3)};
    case PixelFormat::Uvlx8888:
    case PixelFormat::Rgb888:
      return {byte(2), byte(1), byte(0), 255};
    case PixelFormat::Abgr8888:
      return {byte(1), byte(2), byte(3), byte(0)};
    case PixelFormat::Argb8888:
      return {byte(3), byte(2), byte(1), byte(0)};
    case PixelFormat::Bgra8888:
      return {byte(0), byte(1), byte(2), byte(3)};
    case PixelFormat::Bgrx8888:
    case PixelFormat::Bgr888:
      return {byte(0), byte(1), byte(2), 255};
    case PixelFormat::Rgb888BlueScreen:
      return BlueKeyed({byte(2), byte(1), byte(0), 255});
    case PixelFormat::Bgr888BlueScreen:
      return BlueKeyed({byte(0), byte(1), byte(2), 255});
    case PixelFormat::I8:
      return {byte(0), byte(0), byte(0), 255};
    case PixelFormat::Ia88:
      return {byte(0), byte(0), byte(0), byte(1)};
    case PixelFormat::A8:
      return {255, 255, 255, byte(0)};
    case PixelFormat::Uv88:
      return {0, byte(1), byte(0), 255};
    case PixelFormat::Rgb565:
      return {Channel(Word(at), 11, 5), Channel(Word(at), 5, 6), Channel(Word(at), 0, 5), 255};
    case PixelFormat::Bgr565:
      return From565(Word(at));
    case PixelFormat::Bgrx5551:
      return {Channel(Word(at), 0, 5), Channel(Word(at), 5, 5), Channel(Word(at), 10, 5), 255};
    case PixelFormat::Bgra5551:
      return {Channel(Word(at), 0, 5), Channel(Word(at), 5, 5), Channel(Word(at), 10, 5), Channel(Word(at), 15, 1)};
    case PixelFormat::Bgra4444:
      return {Channel(Word(at), 0, 4), Channel(Word(at), 4, 4), Channel(Word(at), 8, 4), Channel(Word(at), 12, 4)};
    case PixelFormat::Rgba16161616:
      return {From16(at + 4), From16(at + 2), From16(at), From16(at + 6)};
    case PixelFormat::Rgba16161616F:
      return {FromHalf(at + 4), FromHalf(at + 2), FromHalf(at), FromHalf(at + 6)};
    default:
      return {};
  }
}

}  // namespace tarnwick::tests

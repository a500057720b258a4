#include "textures/byte_order.h"

#include <cstring>

#include "textures/simd.h"

namespace tarnwick::textures {

namespace {

constexpr uint8_t Zero = ByteOrder::Zero;
constexpr uint8_t Full = ByteOrder::Full;

struct OrderOfFormat {
  PixelFormat Format;
  ByteOrder Order;
};

constexpr OrderOfFormat Orders[] = {
    {PixelFormat::Rgba8888, {{2, 1, 0, 3}}},
    {PixelFormat::Abgr8888, {{1, 2, 3, 0}}},
    {PixelFormat::Rgb888, {{2, 1, 0, Full}}},
    {PixelFormat::Bgr888, {{0, 1, 2, Full}}},
    {PixelFormat::I8, {{0, 0, 0, Full}}},
    {PixelFormat::Ia88, {{0, 0, 0, 1}}},
    {PixelFormat::A8, {{Full, Full, Full, 0}}},
    {PixelFormat::Rgb888BlueScreen, {{2, 1, 0, Full}}},
    {PixelFormat::Bgr888BlueScreen, {{0, 1, 2, Full}}},
    {PixelFormat::Argb8888, {{3, 2, 1, 0}}},
    {PixelFormat::Bgra8888, {{0, 1, 2, 3}}},
    {PixelFormat::Bgrx8888, {{0, 1, 2, Full}}},
    {PixelFormat::Uv88, {{Zero, 1, 0, Full}}},
    {PixelFormat::Uvwq8888, {{2, 1, 0, 3}}},
    {PixelFormat::Uvlx8888, {{2, 1, 0, Full}}},
};

/// Whether decoded pixels have the very bytes of the stored ones.
bool IsIdentity(const ByteOrder& order, int stored, int decoded) {
  if (stored != decoded) return false;
  for (int i = 0; i < decoded; ++i) {
    if (order.From[i] != i) return false;
  }
  return true;
}

#if TARNWICK_HAS_SSSE3_CODE
/// Decodes pixels four at a time and returns how many; the last ones are left over, since their 16 bytes would reach
/// past the end.
TARNWICK_SSSE3 int ReorderFours(const ByteOrder& order, int stored, const uint8_t* from, int count, int decoded,
                                uint8_t* to) {
  alignas(16) uint8_t shuffle[16];
  alignas(16) uint8_t set[16];
  std::memset(shuffle, 0x80, sizeof shuffle);
  std::memset(set, 0, sizeof set);
  for (int pixel = 0; pixel < 4; ++pixel) {
    for (int channel = 0; channel < decoded; ++channel) {
      const uint8_t source = order.From[channel];
      if (source == Full) set[pixel * decoded + channel] = 255;
      if (source < 4) shuffle[pixel * decoded + channel] = static_cast<uint8_t>(pixel * stored + source);
    }
  }
  const __m128i control = Load16(shuffle);
  const __m128i ones = Load16(set);
  // 16 bytes of pixels of one byte are 16 pixels: that many must be left, for reading and for writing.
  const int needed = 16 / (stored < decoded ? stored : decoded) + 1;
  int done = 0;
  for (; count - done >= needed; done += 4) {
    const __m128i bytes = Load16(from + int64_t{done} * stored);
    Store16(to + int64_t{done} * decoded, _mm_or_si128(_mm_shuffle_epi8(bytes, control), ones));
  }
  return done;
}
#endif

}  // namespace

const ByteOrder* FindByteOrder(PixelFormat format) {
  for (const OrderOfFormat& entry : Orders) {
    if (entry.Format == format) return &entry.Order;
  }
  return nullptr;
}

void ReorderBytes(const ByteOrder& order, int stored, const uint8_t* from, int count, PixelLayout layout, uint8_t* to) {
  const int decoded = BytesPerPixel(layout);
  if (IsIdentity(order, stored, decoded)) {
    std::memcpy(to, from, static_cast<size_t>(count) * static_cast<size_t>(stored));
    return;
  }
  int done = 0;
#if TARNWICK_HAS_SSSE3_CODE
  if (HasSsse3()) done = ReorderFours(order, stored, from, count, decoded, to);
#endif
  from += int64_t{done} * stored;
  to += int64_t{done} * decoded;
  for (; done < count; ++done, from += stored, to += decoded) {
    for (int channel = 0; channel < decoded; ++channel) {
      const uint8_t source = order.From[channel];
      to[channel] = source == Full ? uint8_t{255} : source == Zero ? uint8_t{0} : from[source];
    }
  }
}

}  // namespace tarnwick::textures

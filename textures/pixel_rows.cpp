#include "textures/pixel_rows.h"

#include <cstring>

#include "textures/byte_order.h"
#include "textures/dxt_rows.h"
#include "textures/packed_rows.h"

namespace tarnwick::textures {

namespace {

bool IsBlueScreen(PixelFormat format) {
  return format == PixelFormat::Rgb888BlueScreen || format == PixelFormat::Bgr888BlueScreen;
}

/// Makes the pure blue among decoded pixels transparent.
void KeyOutBlue(uint8_t* pixels, int count) {
  constexpr uint32_t OpaqueBlue = 0xFF0000FF;
  for (int i = 0; i < count; ++i) {
    uint32_t pixel;
    std::memcpy(&pixel, pixels + int64_t{i} * 4, 4);
    pixel = pixel == OpaqueBlue ? pixel & 0x00FFFFFF : pixel;
    std::memcpy(pixels + int64_t{i} * 4, &pixel, 4);
  }
}

}  // namespace

PixelLayout LayoutFor(const StoredImage& image) {
  const bool alpha =
      image.Format == PixelFormat::Dxt1 ? Dxt1UsesAlpha(image) : FindPixelFormat(image.Format)->HoldsAlpha;
  return alpha ? PixelLayout::Bgra32 : PixelLayout::Bgr24;
}

void DecodeRows(const StoredImage& image, int firstRow, int rows, PixelLayout layout, uint8_t* out, ptrdiff_t stride) {
  const PixelFormatFacts* facts = FindPixelFormat(image.Format);
  if (facts->Blocks) {
    DecodeDxtRows(image, firstRow, rows, layout, out, stride);
    return;
  }
  const int64_t rowBytes = int64_t{image.Width} * facts->BytesPerUnit;
  const uint8_t* from = reinterpret_cast<const uint8_t*>(image.Pixels.data()) + firstRow * rowBytes;
  const ByteOrder* order = FindByteOrder(image.Format);
  for (int row = 0; row < rows; ++row, from += rowBytes, out += stride) {
    if (order != nullptr) {
      ReorderBytes(*order, facts->BytesPerUnit, from, image.Width, layout, out);
    } else {
      DecodePacked(image.Format, from, image.Width, layout, out);
    }
    if (IsBlueScreen(image.Format) && layout == PixelLayout::Bgra32) KeyOutBlue(out, image.Width);
  }
}

}  // namespace tarnwick::textures

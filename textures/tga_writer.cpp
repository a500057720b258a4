#include "textures/tga_writer.h"

#include <algorithm>
#include <memory>

#include "textures/pixel_rows.h"

namespace tarnwick::textures {

namespace {

// Large enough that a call of the system is nothing beside the work for it, small enough for the processor's cache.
constexpr int64_t BandBytes = int64_t{128} << 10;

}  // namespace

TgaHeader MakeTgaHeader(int width, int height, PixelLayout layout) {
  TgaHeader header{};
  header.ImageType = TgaTrueColour;
  header.Width = static_cast<uint16_t>(width);
  header.Height = static_cast<uint16_t>(height);
  header.PixelBits = static_cast<uint8_t>(8 * BytesPerPixel(layout));
  header.Descriptor = layout == PixelLayout::Bgra32 ? 8 : 0;
  return header;
}

bool WriteTga(const StoredImage& image, PixelLayout layout, const std::function<bool(std::string_view)>& write) {
  const TgaHeader header = MakeTgaHeader(image.Width, image.Height, layout);
  if (!write({reinterpret_cast<const char*>(&header), sizeof header})) return false;

  const int64_t rowBytes = int64_t{image.Width} * BytesPerPixel(layout);
  const int64_t wanted = std::clamp<int64_t>(BandBytes / rowBytes, 1, image.Height);
  const int step = (static_cast<int>(wanted) + 3) / 4 * 4;
  const auto band = std::make_unique_for_overwrite<uint8_t[]>(static_cast<size_t>(step * rowBytes));
  // Bands go from the lowest to the topmost, and so do the rows within each.
  for (int first = (image.Height - 1) / step * step; first >= 0; first -= step) {
    const int rows = std::min(step, image.Height - first);
    DecodeRows(image, first, rows, layout, band.get() + (rows - 1) * rowBytes, -rowBytes);
    const auto size = static_cast<size_t>(rows * rowBytes);
    if (!write({reinterpret_cast<const char*>(band.get()), size})) return false;
  }
  return true;
}

}  // namespace tarnwick::textures

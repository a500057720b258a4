// Decodes pixels of every format the fast way, in bands and in both directions, and compares each with the plain way.
// The first four bytes choose format, width, height and band; the rest are the pixels, over and over.

#include <cstdlib>
#include <vector>

#include "support/pixel_reference.h"
#include "textures/pixel_rows.h"

using namespace tarnwick::textures;
using tarnwick::tests::ReferencePixel;

namespace {

constexpr size_t Margin = 64;  // bytes around the rows, which nobody may touch
constexpr uint8_t Untouched = 0xA5;

void Compare(const StoredImage& image, PixelLayout layout, int band, bool upwards) {
  const auto pixelBytes = static_cast<size_t>(BytesPerPixel(layout));
  const size_t rowBytes = static_cast<size_t>(image.Width) * pixelBytes;
  const auto rows = static_cast<size_t>(image.Height);
  std::vector<uint8_t> out(rowBytes * rows + 2 * Margin, Untouched);
  const auto rowAt = [&](int y) {
    const int line = upwards ? image.Height - 1 - y : y;
    return out.data() + Margin + static_cast<size_t>(line) * rowBytes;
  };
  const ptrdiff_t stride = upwards ? -static_cast<ptrdiff_t>(rowBytes) : static_cast<ptrdiff_t>(rowBytes);
  for (int y = 0; y < image.Height; y += band) {
    DecodeRows(image, y, std::min(band, image.Height - y), layout, rowAt(y), stride);
  }
  for (int y = 0; y < image.Height; ++y) {
    for (int x = 0; x < image.Width; ++x) {
      const uint8_t* got = rowAt(y) + static_cast<size_t>(x) * pixelBytes;
      Bgra expected = ReferencePixel(image, x, y);
      if (layout == PixelLayout::Bgr24) expected.A = 255;
      const uint8_t alpha = layout == PixelLayout::Bgra32 ? got[3] : uint8_t{255};
      if (Bgra{got[0], got[1], got[2], alpha} != expected) std::abort();
    }
  }
  for (size_t i = 0; i < Margin; ++i) {
    if (out[i] != Untouched || out[out.size() - 1 - i] != Untouched) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr size_t HeadSize = 4;
  if (size <= HeadSize) return 0;
  const PixelFormat format{data[0] % 27};
  const PixelFormatFacts* facts = FindPixelFormat(format);
  if (facts == nullptr || facts->BytesPerUnit == 0) return 0;
  const int width = 1 + data[1] % 40;
  const int height = 1 + data[2] % 24;
  const int band = 4 * (1 + data[3] % 6);
  std::vector<std::byte> pixels(static_cast<size_t>(ImageBytes(*facts, width, height)));
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = std::byte{data[HeadSize + i % (size - HeadSize)]};
  const StoredImage image{format, width, height, pixels};
  for (const PixelLayout layout : {PixelLayout::Bgr24, PixelLayout::Bgra32}) {
    Compare(image, layout, band, false);
    Compare(image, layout, band, true);
  }
  return 0;
}

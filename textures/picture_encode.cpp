#include "textures/picture_encode.h"

#include <squish.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace tarnwick::textures {

namespace {

/// The pixels of the block whose upper left pixel is at `x`, `y`, red first as libsquish takes them; returns a bit for
/// each pixel that lies inside the picture.
int GatherBlock(const Picture& picture, int x, int y, bool opaque, uint8_t (&rgba)[64]) {
  int mask = 0;
  for (int i = 0; i < 16; ++i) {
    const int column = x + i % 4;
    const int row = y + i / 4;
    if (column >= picture.Width || row >= picture.Height) continue;
    const Bgra& pixel = picture.Pixels[static_cast<size_t>(int64_t{row} * picture.Width + column)];
    rgba[4 * i] = pixel.R;
    rgba[4 * i + 1] = pixel.G;
    rgba[4 * i + 2] = pixel.B;
    rgba[4 * i + 3] = opaque ? uint8_t{255} : pixel.A;
    mask |= 1 << i;
  }
  return mask;
}

std::string EncodeBlocks(const Picture& picture, PixelFormat format, FitEffort effort) {
  const bool dxt5 = format == PixelFormat::Dxt5;
  const bool opaque = format == PixelFormat::Dxt1;
  const int fit = effort == FitEffort::Best ? squish::kColourClusterFit : squish::kColourRangeFit;
  const int flags = (dxt5 ? squish::kDxt5 : squish::kDxt1) | fit;
  const size_t blockBytes = dxt5 ? 16 : 8;
  const int blocksWide = (picture.Width + 3) / 4;
  const int blocksHigh = (picture.Height + 3) / 4;
  std::string blocks(static_cast<size_t>(blocksWide) * static_cast<size_t>(blocksHigh) * blockBytes, '\0');

  std::atomic<int> nextLine{0};
  const auto encodeLines = [&] {
    for (int line = nextLine++; line < blocksHigh; line = nextLine++) {
      char* out = blocks.data() + static_cast<size_t>(line) * static_cast<size_t>(blocksWide) * blockBytes;
      for (int column = 0; column < blocksWide; ++column, out += blockBytes) {
        uint8_t rgba[64] = {};
        const int mask = GatherBlock(picture, 4 * column, 4 * line, opaque, rgba);
        squish::CompressMasked(rgba, mask, out, flags);
      }
    }
  };
  // The small levels are done before a thread has started.
  const int threads = std::min<int>(static_cast<int>(std::thread::hardware_concurrency()), blocksHigh / 8);
  std::vector<std::thread> helpers;
  for (int i = 1; i < threads; ++i) helpers.emplace_back(encodeLines);
  encodeLines();
  for (std::thread& helper : helpers) helper.join();
  return blocks;
}

}  // namespace

std::string EncodePicture(const Picture& picture, PixelFormat format, FitEffort effort) {
  const char* pixels = reinterpret_cast<const char*>(picture.Pixels.data());
  if (format == PixelFormat::Bgra8888) return std::string(pixels, picture.Pixels.size() * sizeof(Bgra));
  if (format != PixelFormat::Bgr888) return EncodeBlocks(picture, format, effort);
  std::string bytes;
  bytes.reserve(picture.Pixels.size() * 3);
  for (const Bgra& pixel : picture.Pixels) bytes.append(reinterpret_cast<const char*>(&pixel), 3);
  return bytes;
}

}  // namespace tarnwick::textures

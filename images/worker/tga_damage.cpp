#include "images/worker/tga_damage.h"

#include <algorithm>
#include <cstdint>

#include "images/worker/decoded.h"

namespace tarnwick::images {

namespace {

constexpr int RunLengths = 8;  // the bit of the kind that tells run-length encoding

int64_t FileSize(const ImageFile& file) {
  std::fseek(file.Handle(), 0, SEEK_END);
  return std::ftell(file.Handle());
}

/// The pixels that the runs from here on hold, at most `wanted`.
int64_t CountRunPixels(FILE* file, int64_t wanted, int pixelBytes) {
  int64_t pixels = 0;
  while (pixels < wanted) {
    const int head = std::getc(file);
    if (head == EOF) break;
    const int count = (head & 127) + 1;
    const int stored = (head & 128) != 0 ? 1 : count;
    for (int i = 0; i < stored * pixelBytes; ++i) {
      if (std::getc(file) == EOF) return pixels + ((head & 128) != 0 ? 0 : i / pixelBytes);
    }
    pixels += count;
  }
  return pixels;
}

}  // namespace

std::string TgaDamage(const ImageFile& file) {
  unsigned char head[18];
  file.Rewind();
  if (std::fread(head, 1, sizeof head, file.Handle()) < sizeof head) return "the file ends inside its header";
  const auto word = [&head](int offset) { return int64_t{head[offset]} | int64_t{head[offset + 1]} << 8; };
  const int64_t map = head[1] == 0 ? 0 : word(5) * ((head[7] + 7) / 8);
  const int64_t start = static_cast<int64_t>(sizeof head) + head[0] + map;
  const int64_t pixels = word(12) * word(14);
  const int pixelBytes = (head[16] + 7) / 8;
  if ((head[2] & RunLengths) == 0) {
    const int64_t there = std::max<int64_t>(FileSize(file) - start, 0);
    return there < pixels * pixelBytes ? EndsEarly(pixels * pixelBytes, there) : "";
  }
  std::fseek(file.Handle(), static_cast<long>(start), SEEK_SET);
  const int64_t there = CountRunPixels(file.Handle(), pixels, pixelBytes);
  if (there >= pixels) return "";
  return "the file ends early: it holds " + std::to_string(there) + " of its " + std::to_string(pixels) + " pixels";
}

}  // namespace tarnwick::images

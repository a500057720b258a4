#include "textures/dds_writer.h"

#include <cstring>

#include "textures/dds_format.h"
#include "textures/picture_encode.h"

namespace tarnwick::textures {

namespace {

/// How the header tells a format; the names of the formats give the order of the bytes.
struct FormatWords {
  PixelFormat Format;
  DdsPixelFormat Words;
};
constexpr FormatWords Formats[] = {
    {PixelFormat::Dxt1, {32, DdsCode, {'D', 'X', 'T', '1'}, 0, 0, 0, 0, 0}},
    {PixelFormat::Dxt1OneBitAlpha, {32, DdsCode | DdsAlphaPixels, {'D', 'X', 'T', '1'}, 0, 0, 0, 0, 0}},
    {PixelFormat::Dxt3, {32, DdsCode, {'D', 'X', 'T', '3'}, 0, 0, 0, 0, 0}},
    {PixelFormat::Dxt5, {32, DdsCode, {'D', 'X', 'T', '5'}, 0, 0, 0, 0, 0}},
    {PixelFormat::Bgra8888, {32, DdsColours | DdsAlphaPixels, {}, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000}},
    {PixelFormat::Bgrx8888, {32, DdsColours, {}, 32, 0xFF0000, 0xFF00, 0xFF, 0}},
    {PixelFormat::Rgba8888, {32, DdsColours | DdsAlphaPixels, {}, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000}},
    {PixelFormat::Abgr8888, {32, DdsColours | DdsAlphaPixels, {}, 32, 0xFF000000, 0xFF0000, 0xFF00, 0xFF}},
    {PixelFormat::Argb8888, {32, DdsColours | DdsAlphaPixels, {}, 32, 0xFF00, 0xFF0000, 0xFF000000, 0xFF}},
    {PixelFormat::Bgr888, {32, DdsColours, {}, 24, 0xFF0000, 0xFF00, 0xFF, 0}},
    {PixelFormat::Rgb888, {32, DdsColours, {}, 24, 0xFF, 0xFF00, 0xFF0000, 0}},
    {PixelFormat::Bgr565, {32, DdsColours, {}, 16, 0xF800, 0x7E0, 0x1F, 0}},
    {PixelFormat::Rgb565, {32, DdsColours, {}, 16, 0x1F, 0x7E0, 0xF800, 0}},
    {PixelFormat::Bgrx5551, {32, DdsColours, {}, 16, 0x7C00, 0x3E0, 0x1F, 0}},
    {PixelFormat::Bgra5551, {32, DdsColours | DdsAlphaPixels, {}, 16, 0x7C00, 0x3E0, 0x1F, 0x8000}},
    {PixelFormat::Bgra4444, {32, DdsColours | DdsAlphaPixels, {}, 16, 0xF00, 0xF0, 0xF, 0xF000}},
    {PixelFormat::I8, {32, DdsLuminance, {}, 8, 0xFF, 0, 0, 0}},
    {PixelFormat::Ia88, {32, DdsLuminance | DdsAlphaPixels, {}, 16, 0xFF, 0, 0, 0xFF00}},
    {PixelFormat::A8, {32, DdsAlphaOnly, {}, 8, 0, 0, 0, 0xFF}},
};

const FormatWords* Find(PixelFormat format) {
  for (const FormatWords& words : Formats) {
    if (words.Format == format) return &words;
  }
  return nullptr;
}

DdsHeader HeaderOf(std::span<const StoredImage> levels) {
  const StoredImage& largest = levels.front();
  const PixelFormatFacts& facts = *FindPixelFormat(largest.Format);
  DdsHeader header{};
  std::memcpy(header.Signature, "DDS ", 4);
  header.Size = sizeof(DdsHeader) - 4;
  header.Flags = DdsHasSizeAndFormat | (facts.Blocks ? DdsHasLinearSize : DdsHasPitch);
  header.Height = static_cast<uint32_t>(largest.Height);
  header.Width = static_cast<uint32_t>(largest.Width);
  header.PitchOrSize = facts.Blocks ? static_cast<uint32_t>(largest.Pixels.size())
                                    : static_cast<uint32_t>(largest.Width * facts.BytesPerUnit);
  header.Format = Find(largest.Format)->Words;
  header.Caps = DdsTexture;
  header.MipLevels = static_cast<uint32_t>(levels.size());
  if (levels.size() > 1) {
    header.Flags |= DdsHasMipLevels;
    header.Caps |= DdsComplex | DdsMipMap;
  }
  return header;
}

}  // namespace

bool DdsHolds(PixelFormat format) {
  return Find(format) != nullptr;
}

bool WriteDds(std::span<const StoredImage> levels, const std::function<bool(std::string_view)>& write) {
  const DdsHeader header = HeaderOf(levels);
  if (!write({reinterpret_cast<const char*>(&header), sizeof header})) return false;
  for (const StoredImage& level : levels) {
    if (!write({reinterpret_cast<const char*>(level.Pixels.data()), level.Pixels.size()})) return false;
  }
  return true;
}

bool WriteDds(const Picture& picture, const std::function<bool(std::string_view)>& write) {
  const PixelFormat format = UsesAlpha(picture) ? PixelFormat::Dxt5 : PixelFormat::Dxt1;
  const std::string blocks = EncodePicture(picture, format);
  const StoredImage level{format, picture.Width, picture.Height, std::as_bytes(std::span(blocks))};
  return WriteDds(std::span(&level, 1), write);
}

}  // namespace tarnwick::textures

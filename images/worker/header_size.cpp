#include "images/worker/header_size.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

#include "core/image_view.h"
#include "images/worker/bmp_reader.h"

namespace tarnwick::images {

namespace {

// The library reads most headers itself without touching the pixels. What follows is for the familiar formats where it
// cannot. Of the others nothing is known before they are loaded; the limit on the memory of the process holds there.

using Size = std::optional<HeaderSize>;

/// The first bytes of a file: checked access.
class Head {
 public:
  explicit Head(std::span<const char> bytes) : m_view(std::as_bytes(bytes)), m_text(bytes.data(), bytes.size()) {}

  int64_t Byte(int64_t offset) const { return m_view.Value<uint8_t>(offset).value_or(0); }
  int64_t Little16(int64_t offset) const { return Byte(offset) | Byte(offset + 1) << 8; }
  int64_t Little32(int64_t offset) const { return Little16(offset) | Little16(offset + 2) << 16; }

  bool StartsWith(std::string_view bytes) const { return m_text.starts_with(bytes); }

 private:
  core::ImageView m_view;
  std::string_view m_text;
};

Size GifSize(const Head& head) {
  if (!head.StartsWith("GIF8")) return std::nullopt;
  HeaderSize size{head.Little16(6), head.Little16(8), 8};
  // The first picture has a size of its own, which is the one that is allocated. Before it stand the palette and
  // extensions, each a run of length-counted blocks.
  int64_t at = 13 + (head.Byte(10) & 0x80 ? 3 * (int64_t{2} << (head.Byte(10) & 7)) : 0);
  while (head.Byte(at) == 0x21) {
    at += 2;
    while (head.Byte(at) != 0) at += head.Byte(at) + 1;
    ++at;
  }
  if (head.Byte(at) != 0x2C) return std::nullopt;
  size.Width = std::max(size.Width, head.Little16(at + 5));
  size.Height = std::max(size.Height, head.Little16(at + 7));
  return size;
}

Size DdsSize(const Head& head) {
  if (!head.StartsWith("DDS ")) return std::nullopt;
  return HeaderSize{head.Little32(16), head.Little32(12), 32};
}

struct OwnReader {
  FREE_IMAGE_FORMAT Format;
  Size (*Read)(const Head&);
};
constexpr OwnReader OwnReaders[] = {{FIF_GIF, GifSize}, {FIF_DDS, DdsSize}};

Size ReadByLibrary(FREE_IMAGE_FORMAT format, const ImageFile& file) {
  const Bitmap header(FreeImage_LoadFromHandle(format, FileAccess(), file.Handle(), FIF_LOAD_NOPIXELS));
  if (!header) return std::nullopt;
  return HeaderSize{FreeImage_GetWidth(header.get()), FreeImage_GetHeight(header.get()),
                    FreeImage_GetBPP(header.get())};
}

Size ReadOurselves(FREE_IMAGE_FORMAT format, const ImageFile& file) {
  constexpr size_t HeadSize = size_t{1} << 18;
  const auto* reader = std::find_if(std::begin(OwnReaders), std::end(OwnReaders),
                                    [&](const OwnReader& candidate) { return candidate.Format == format; });
  if (reader == std::end(OwnReaders)) return std::nullopt;
  std::vector<char> bytes(HeadSize);
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.Handle()));
  return reader->Read(Head(bytes));
}

}  // namespace

bool TellsSizeByHeader(FREE_IMAGE_FORMAT format) {
  return FreeImage_FIFSupportsNoPixels(format) != 0 ||
         std::any_of(std::begin(OwnReaders), std::end(OwnReaders),
                     [&](const OwnReader& reader) { return reader.Format == format; });
}

std::optional<HeaderSize> ReadHeaderSize(FREE_IMAGE_FORMAT format, const ImageFile& file) {
  file.Rewind();
  Size size = format == FIF_BMP ? OwnBmpSize(file) : std::nullopt;
  file.Rewind();
  if (!size) size = FreeImage_FIFSupportsNoPixels(format) ? ReadByLibrary(format, file) : ReadOurselves(format, file);
  file.Rewind();
  return size && size->Width > 0 && size->Height > 0 ? size : std::nullopt;
}

}  // namespace tarnwick::images

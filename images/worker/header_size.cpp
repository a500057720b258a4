#include "images/worker/header_size.h"

#include <algorithm>
#include <charconv>
#include <span>
#include <string_view>
#include <vector>

#include "core/image_view.h"

namespace tarnwick::images {

namespace {

// The library reads most headers itself without touching the pixels. What follows is for the formats where it cannot.

using Size = std::optional<HeaderSize>;

/// The first bytes of a file: checked access, and a search.
class Head {
 public:
  explicit Head(std::span<const char> bytes) : m_view(std::as_bytes(bytes)), m_text(bytes.data(), bytes.size()) {}

  int64_t Byte(int64_t offset) const { return m_view.Value<uint8_t>(offset).value_or(0); }
  int64_t Little16(int64_t offset) const { return Byte(offset) | Byte(offset + 1) << 8; }
  int64_t Little32(int64_t offset) const { return Little16(offset) | Little16(offset + 2) << 16; }
  int64_t Big16(int64_t offset) const { return Byte(offset) << 8 | Byte(offset + 1); }
  int64_t Big32(int64_t offset) const { return Big16(offset) << 16 | Big16(offset + 2); }

  bool StartsWith(std::string_view bytes) const { return m_text.starts_with(bytes); }
  /// The offset behind the first `bytes` at or behind `from`; -1 if there are none.
  int64_t Behind(std::string_view bytes, int64_t from = 0) const {
    const size_t found = m_text.find(bytes, static_cast<size_t>(from));
    return found == std::string_view::npos ? -1 : static_cast<int64_t>(found + bytes.size());
  }
  /// The decimal number at `offset`, behind blanks; -1 if there is none.
  int64_t Decimal(int64_t offset) const {
    while (Byte(offset) == ' ' || Byte(offset) == '\t') ++offset;
    const char* first = m_text.data() + std::min(static_cast<size_t>(offset), m_text.size());
    int64_t value = -1;
    std::from_chars(first, m_text.data() + m_text.size(), value);
    return value;
  }

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

Size SgiSize(const Head& head) {
  if (!head.StartsWith("\x01\xDA")) return std::nullopt;
  return HeaderSize{head.Big16(6), std::max<int64_t>(head.Big16(8), 1),
                    head.Byte(3) * 8 * std::max<int64_t>(head.Big16(10), 1)};
}

Size IffSize(const Head& head) {
  const int64_t header = head.Behind("BMHD");
  if (!head.StartsWith("FORM") || header < 0) return std::nullopt;
  return HeaderSize{head.Big16(header + 4), head.Big16(header + 6), 32};
}

Size MngSize(const Head& head) {
  const int64_t header = head.Behind("MHDR");
  if (header < 0) return std::nullopt;
  return HeaderSize{head.Big32(header), head.Big32(header + 4), 32};
}

/// Both JPEG 2000 forms hold a codestream, whose size marker is what the decoder goes by.
Size Jpeg2000Size(const Head& head) {
  const int64_t header = head.Behind("\xFF\x4F\xFF\x51");
  if (header < 0) return std::nullopt;
  const int64_t components = head.Big16(header + 36);
  return HeaderSize{head.Big32(header + 4), head.Big32(header + 8), 32 * std::max<int64_t>(components, 1)};
}

Size WbmpSize(const Head& head) {
  int64_t at = 2;
  const auto number = [&] {
    int64_t value = 0;
    for (int digits = 0; digits < 5; ++digits) {
      const int64_t byte = head.Byte(at++);
      value = value << 7 | (byte & 0x7F);
      if ((byte & 0x80) == 0) break;
    }
    return value;
  };
  const int64_t width = number();
  return HeaderSize{width, number(), 1};
}

Size XbmSize(const Head& head) {
  const int64_t width = head.Behind("_width");
  const int64_t height = head.Behind("_height");
  if (width < 0 || height < 0) return std::nullopt;
  return HeaderSize{head.Decimal(width), head.Decimal(height), 1};
}

Size PictSize(const Head& head) {
  constexpr int64_t Frame =
      512 + 2;  // a block without meaning, then the size of the file, then top, left, bottom, right
  return HeaderSize{head.Big16(Frame + 6) - head.Big16(Frame + 2), head.Big16(Frame + 4) - head.Big16(Frame), 32};
}

Size KoalaSize(const Head&) {
  return HeaderSize{320, 200, 4};
}

struct OwnReader {
  FREE_IMAGE_FORMAT Format;
  Size (*Read)(const Head&);
};
constexpr OwnReader OwnReaders[] = {
    {FIF_GIF, GifSize}, {FIF_DDS, DdsSize},      {FIF_SGI, SgiSize},      {FIF_IFF, IffSize},
    {FIF_MNG, MngSize}, {FIF_JP2, Jpeg2000Size}, {FIF_J2K, Jpeg2000Size}, {FIF_WBMP, WbmpSize},
    {FIF_XBM, XbmSize}, {FIF_PICT, PictSize},    {FIF_KOALA, KoalaSize},
};

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

std::optional<HeaderSize> ReadHeaderSize(FREE_IMAGE_FORMAT format, const ImageFile& file) {
  file.Rewind();
  const Size size = FreeImage_FIFSupportsNoPixels(format) ? ReadByLibrary(format, file) : ReadOurselves(format, file);
  file.Rewind();
  return size && size->Width > 0 && size->Height > 0 ? size : std::nullopt;
}

}  // namespace tarnwick::images

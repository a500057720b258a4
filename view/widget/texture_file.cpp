#include "view/widget/texture_file.h"

#include <algorithm>

#include "textures/pixel_rows.h"

namespace tarnwick::view {

using namespace textures;

namespace {

/// Which byte of a pixel as Qt keeps it (blue first) a channel is.
constexpr int ByteOf(TextureChannels channel) {
  switch (channel) {
    case TextureChannels::Red:
      return 2;
    case TextureChannels::Green:
      return 1;
    case TextureChannels::Blue:
      return 0;
    default:
      return 3;
  }
}

/// One channel of `picture` as a grey picture.
QImage Alone(const QImage& picture, TextureChannels channel) {
  QImage grey(picture.size(), QImage::Format_Grayscale8);
  if (grey.isNull()) return grey;
  const int byte = ByteOf(channel);
  for (int y = 0; y < picture.height(); ++y) {
    const uchar* from = picture.constScanLine(y) + byte;
    uchar* to = grey.scanLine(y);
    for (int x = 0; x < picture.width(); ++x) to[x] = from[4 * x];
  }
  return grey;
}

}  // namespace

std::shared_ptr<const TextureFile> TextureFile::Read(const std::string& path, std::string& reason,
                                                     const core::FileSource& files) {
  auto image = files.Read(path, &reason);
  if (!image) return nullptr;
  std::shared_ptr<TextureFile> file(new TextureFile(std::move(*image)));
  file->m_vtf = VtfFile::Open(file->m_file.View(), reason);
  if (!file->m_vtf) return nullptr;
  return file;
}

QImage TextureFile::Decode(const VtfImagePlace& place, TextureChannels channels) const {
  const VtfInfo& info = Info();
  const StoredImage stored{info.Format, MipSize(info.Width, place.Mip), MipSize(info.Height, place.Mip),
                           m_vtf->Image(place)};
  const bool hasAlpha = LayoutFor(stored) == PixelLayout::Bgra32;
  QImage picture(stored.Width, stored.Height, hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
  if (picture.isNull()) return picture;
  DecodeRows(stored, 0, stored.Height, PixelLayout::Bgra32, picture.bits(), picture.bytesPerLine());
  switch (channels) {
    case TextureChannels::ColourAndAlpha:
      return picture;
    case TextureChannels::Colour:
      picture.reinterpretAsFormat(QImage::Format_RGB32);
      return picture;
    default:
      return Alone(picture, channels);
  }
}

}  // namespace tarnwick::view

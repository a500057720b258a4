#include "images/image_format.h"

#include "core/paths.h"

namespace tarnwick::images {

namespace {

constexpr ImageFormat FormatTable[] = {
    {0, "BMP", "bmp"},
    {1, "ICO", "ico"},
    {2, "JPEG", "jpeg,jpg,jif,jpe"},
    {13, "PNG", "png"},
    {FormatTga, "TGA", "targa,tga"},
    {18, "TIFF", "tiff,tif"},
    {20, "PSD", "psd,psb"},
    {FormatDds, "DDS", "dds"},
    {25, "GIF", "gif"},
};

bool ListHolds(std::string_view list, std::string_view word) {
  while (!list.empty()) {
    const size_t comma = list.find(',');
    if (list.substr(0, comma) == word) return true;
    list.remove_prefix(comma == std::string_view::npos ? list.size() : comma + 1);
  }
  return false;
}

}  // namespace

const std::span<const ImageFormat> NamedFormats = FormatTable;

const ImageFormat* FormatOfFileName(std::string_view name) {
  const size_t dot = name.rfind('.');
  const std::string ending = core::LowerAscii(dot == std::string_view::npos ? name : name.substr(dot + 1));
  for (const ImageFormat& format : NamedFormats) {
    if (ListHolds(format.Endings, ending)) return &format;
  }
  return nullptr;
}

}  // namespace tarnwick::images

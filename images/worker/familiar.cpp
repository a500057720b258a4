#include "images/worker/familiar.h"

#include <algorithm>
#include <string_view>

namespace tarnwick::images {

namespace {

using namespace std::string_view_literals;

constexpr FREE_IMAGE_FORMAT Familiar[] = {FIF_PNG, FIF_JPEG, FIF_BMP, FIF_TARGA, FIF_GIF,  FIF_TIFF,
                                          FIF_PSD, FIF_DDS,  FIF_EXR, FIF_HDR,   FIF_WEBP, FIF_ICO};

struct Signature {
  size_t Offset;
  std::string_view Bytes;
  FREE_IMAGE_FORMAT Format;
};
constexpr Signature Signatures[] = {
    {0, "\x89PNG\r\n\x1A\n"sv, FIF_PNG},
    {0, "\xFF\xD8\xFF"sv, FIF_JPEG},
    {0, "GIF8"sv, FIF_GIF},
    {0, "II*\0"sv, FIF_TIFF},
    {0, "MM\0*"sv, FIF_TIFF},
    {0, "8BPS"sv, FIF_PSD},
    {0, "DDS "sv, FIF_DDS},
    {0, "\x76\x2F\x31\x01"sv, FIF_EXR},
    {0, "#?RADIANCE"sv, FIF_HDR},
    {0, "#?RGBE"sv, FIF_HDR},
    {8, "WEBP"sv, FIF_WEBP},
    {0, "\0\0\1\0"sv, FIF_ICO},
    {0, "BM"sv, FIF_BMP},
};

/// Whether the 18 bytes are a header that a TGA file can have.
bool LooksLikeTga(std::string_view head) {
  constexpr unsigned char Kinds[] = {1, 2, 3, 9, 10, 11};
  if (head.size() < 18) return false;
  const auto byte = [head](size_t offset) { return static_cast<unsigned char>(head[offset]); };
  const unsigned bits = byte(16);
  return byte(1) <= 1 && std::find(std::begin(Kinds), std::end(Kinds), byte(2)) != std::end(Kinds) &&
         (byte(12) != 0 || byte(13) != 0) && (byte(14) != 0 || byte(15) != 0) &&
         (bits == 8 || bits == 15 || bits == 16 || bits == 24 || bits == 32);
}

}  // namespace

bool IsFamiliar(FREE_IMAGE_FORMAT format) {
  return std::find(std::begin(Familiar), std::end(Familiar), format) != std::end(Familiar);
}

FREE_IMAGE_FORMAT FamiliarFormatOf(const ImageFile& file) {
  char bytes[18];
  file.Rewind();
  const std::string_view head(bytes, std::fread(bytes, 1, sizeof bytes, file.Handle()));
  file.Rewind();
  for (const Signature& signature : Signatures) {
    if (head.size() > signature.Offset && head.substr(signature.Offset).starts_with(signature.Bytes)) {
      return signature.Format;
    }
  }
  return LooksLikeTga(head) ? FIF_TARGA : FIF_UNKNOWN;
}

}  // namespace tarnwick::images

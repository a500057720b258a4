#include "images/worker/bitmap_fit.h"

#include <array>

#include "images/worker/linear_light.h"
#include "images/worker/quantize.h"

namespace tarnwick::images {

namespace {

/// Whether `format` can be written with `depth` bits a pixel. Three answers of the library are wrong: its JPEG writer
/// takes 32 bits for CMYK, its PSD writer leaves files with a palette or one bit that nobody can read.
bool TakesDepth(FREE_IMAGE_FORMAT format, int depth) {
  if (format == FIF_JPEG && depth == 32) return false;
  if (format == FIF_PSD && depth < 24) return false;
  return FreeImage_FIFSupportsExportBPP(format, depth) != 0;
}

bool CanHold(FREE_IMAGE_FORMAT format, FIBITMAP* image) {
  const FREE_IMAGE_TYPE type = FreeImage_GetImageType(image);
  if (FreeImage_FIFSupportsExportType(format, type) == 0) return false;
  return type != FIT_BITMAP || TakesDepth(format, static_cast<int>(FreeImage_GetBPP(image)));
}

Bitmap InDepth(FIBITMAP* image, int depth) {
  switch (depth) {
    case 32:
      return Bitmap(FreeImage_ConvertTo32Bits(image));
    case 24:
      return Bitmap(FreeImage_ConvertTo24Bits(image));
    case 8:
      return QuantizeWithTransparency(image);
    default:
      return Bitmap(FreeImage_Dither(image, FID_FS));
  }
}

}  // namespace

Bitmap ToStandard(Bitmap image, FREE_IMAGE_FORMAT from) {
  switch (FreeImage_GetImageType(image.get())) {
    case FIT_BITMAP:
      return image;
    case FIT_RGB16:
      return Bitmap(FreeImage_ConvertTo24Bits(image.get()));
    case FIT_RGBA16:
      return Bitmap(FreeImage_ConvertTo32Bits(image.get()));
    case FIT_UINT16:
      return Bitmap(FreeImage_ConvertTo8Bits(image.get()));
    case FIT_RGBF:
    case FIT_RGBAF:
      return LinearToSrgb(image.get());
    case FIT_FLOAT:
      if (from == FIF_EXR || from == FIF_HDR) return LinearToSrgb(image.get());
      [[fallthrough]];
    default:
      return Bitmap(FreeImage_ConvertToStandardType(image.get(), TRUE));
  }
}

Bitmap FitToFormat(Bitmap image, FREE_IMAGE_FORMAT format) {
  if (CanHold(format, image.get())) return image;
  const bool floats = FreeImage_FIFSupportsExportType(format, FIT_BITMAP) == 0;
  if (floats) {
    image = ToStandard(std::move(image));
    // Formats of floats hold linear light; those that cannot hold alpha get the colours alone.
    const bool keepsAlpha = FreeImage_FIFSupportsExportType(format, FIT_RGBAF) != 0;
    if (image && (FreeImage_GetBPP(image.get()) != 32 || !keepsAlpha)) {
      image.reset(keepsAlpha && FreeImage_IsTransparent(image.get()) != 0 ? FreeImage_ConvertTo32Bits(image.get())
                                                                          : FreeImage_ConvertTo24Bits(image.get()));
    }
    if (image) image = SrgbToLinear(image.get());
    return image && CanHold(format, image.get()) ? std::move(image) : nullptr;
  }
  image = ToStandard(std::move(image));
  if (!image || CanHold(format, image.get())) return image;
  const bool hasAlpha = FreeImage_IsTransparent(image.get()) != 0;
  const std::array<int, 4> depths = hasAlpha ? std::array{32, 24, 8, 1} : std::array{24, 32, 8, 1};
  for (const int depth : depths) {
    if (TakesDepth(format, depth)) return InDepth(image.get(), depth);
  }
  return nullptr;
}

}  // namespace tarnwick::images

#include "images/worker/quantize.h"

namespace tarnwick::images {

namespace {

constexpr int PaletteSize = 256;
constexpr BYTE TransparentEntry = PaletteSize - 1;
constexpr BYTE Opaque = 128;  // alpha from which a pixel is shown

bool HasTransparentPixels(FIBITMAP* image) {
  for (unsigned y = 0; y < FreeImage_GetHeight(image); ++y) {
    const BYTE* line = FreeImage_GetScanLine(image, static_cast<int>(y));
    for (unsigned x = 0; x < FreeImage_GetWidth(image); ++x) {
      if (line[x * 4 + FI_RGBA_ALPHA] < Opaque) return true;
    }
  }
  return false;
}

void MarkTransparentPixels(FIBITMAP* quantized, FIBITMAP* image) {
  for (unsigned y = 0; y < FreeImage_GetHeight(image); ++y) {
    const BYTE* line = FreeImage_GetScanLine(image, static_cast<int>(y));
    BYTE* indices = FreeImage_GetScanLine(quantized, static_cast<int>(y));
    for (unsigned x = 0; x < FreeImage_GetWidth(image); ++x) {
      if (line[x * 4 + FI_RGBA_ALPHA] < Opaque) indices[x] = TransparentEntry;
    }
  }
  FreeImage_SetTransparentIndex(quantized, TransparentEntry);
}

}  // namespace

Bitmap QuantizeWithTransparency(FIBITMAP* image) {
  const bool transparent = FreeImage_GetBPP(image) == 32 && HasTransparentPixels(image);
  const Bitmap colours(FreeImage_ConvertTo24Bits(image));
  if (!colours) return nullptr;
  Bitmap quantized(
      FreeImage_ColorQuantizeEx(colours.get(), FIQ_WUQUANT, transparent ? PaletteSize - 1 : PaletteSize, 0, nullptr));
  if (quantized && transparent) MarkTransparentPixels(quantized.get(), image);
  return quantized;
}

}  // namespace tarnwick::images

#include "images/worker/linear_light.h"

#include <array>
#include <cmath>

namespace tarnwick::images {

namespace {

/// 0 to 1, also of what is no number.
float Bounded(float value) {
  return value > 0 ? (value < 1 ? value : 1.0f) : 0.0f;
}

BYTE Scaled(float value) {
  return static_cast<BYTE>(std::lround(Bounded(value) * 255.0f));
}

/// IEC 61966-2-1, both ways.
BYTE Encoded(float linear) {
  const float value = Bounded(linear);
  return Scaled(value <= 0.0031308f ? value * 12.92f : 1.055f * std::pow(value, 1 / 2.4f) - 0.055f);
}

float Decoded(int stored) {
  const float value = static_cast<float>(stored) / 255.0f;
  return value <= 0.04045f ? value / 12.92f : std::pow((value + 0.055f) / 1.055f, 2.4f);
}

}  // namespace

Bitmap LinearToSrgb(FIBITMAP* image) {
  const FREE_IMAGE_TYPE type = FreeImage_GetImageType(image);
  const unsigned channels = type == FIT_RGBAF ? 4 : type == FIT_RGBF ? 3 : 1;
  const unsigned width = FreeImage_GetWidth(image);
  const unsigned height = FreeImage_GetHeight(image);
  const unsigned step = channels == 4 ? 4 : 3;
  Bitmap result(FreeImage_Allocate(static_cast<int>(width), static_cast<int>(height), static_cast<int>(8 * step)));
  if (!result) return result;
  for (unsigned y = 0; y < height; ++y) {
    const auto* in = reinterpret_cast<const float*>(FreeImage_GetScanLine(image, static_cast<int>(y)));
    BYTE* out = FreeImage_GetScanLine(result.get(), static_cast<int>(y));
    for (unsigned x = 0; x < width; ++x, in += channels, out += step) {
      out[FI_RGBA_RED] = Encoded(in[0]);
      out[FI_RGBA_GREEN] = Encoded(in[channels > 1 ? 1 : 0]);
      out[FI_RGBA_BLUE] = Encoded(in[channels > 1 ? 2 : 0]);
      if (channels == 4) out[FI_RGBA_ALPHA] = Scaled(in[3]);
    }
  }
  return result;
}

Bitmap SrgbToLinear(FIBITMAP* image) {
  std::array<float, 256> linear{};
  for (size_t i = 0; i < linear.size(); ++i) linear[i] = Decoded(static_cast<int>(i));
  const unsigned width = FreeImage_GetWidth(image);
  const unsigned height = FreeImage_GetHeight(image);
  const unsigned step = FreeImage_GetBPP(image) / 8;
  const bool alpha = step == 4;
  Bitmap result(FreeImage_AllocateT(alpha ? FIT_RGBAF : FIT_RGBF, static_cast<int>(width), static_cast<int>(height)));
  if (!result) return result;
  for (unsigned y = 0; y < height; ++y) {
    const BYTE* in = FreeImage_GetScanLine(image, static_cast<int>(y));
    auto* out = reinterpret_cast<float*>(FreeImage_GetScanLine(result.get(), static_cast<int>(y)));
    for (unsigned x = 0; x < width; ++x, in += step, out += alpha ? 4 : 3) {
      out[0] = linear[in[FI_RGBA_RED]];
      out[1] = linear[in[FI_RGBA_GREEN]];
      out[2] = linear[in[FI_RGBA_BLUE]];
      if (alpha) out[3] = static_cast<float>(in[FI_RGBA_ALPHA]) / 255.0f;
    }
  }
  return result;
}

}  // namespace tarnwick::images

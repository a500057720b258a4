#include "textures/vtf_format.h"

namespace tarnwick::textures {

namespace {

constexpr PixelFormatFacts Formats[] = {
    {PixelFormat::Rgba8888, "RGBA8888", 4, false, true},
    {PixelFormat::Abgr8888, "ABGR8888", 4, false, true},
    {PixelFormat::Rgb888, "RGB888", 3, false, false},
    {PixelFormat::Bgr888, "BGR888", 3, false, false},
    {PixelFormat::Rgb565, "RGB565", 2, false, false},
    {PixelFormat::I8, "I8", 1, false, false},
    {PixelFormat::Ia88, "IA88", 2, false, true},
    {PixelFormat::P8, "P8", 0, false, false},
    {PixelFormat::A8, "A8", 1, false, true},
    {PixelFormat::Rgb888BlueScreen, "RGB888_BLUESCREEN", 3, false, true},
    {PixelFormat::Bgr888BlueScreen, "BGR888_BLUESCREEN", 3, false, true},
    {PixelFormat::Argb8888, "ARGB8888", 4, false, true},
    {PixelFormat::Bgra8888, "BGRA8888", 4, false, true},
    {PixelFormat::Dxt1, "DXT1", 8, true, false},
    {PixelFormat::Dxt3, "DXT3", 16, true, true},
    {PixelFormat::Dxt5, "DXT5", 16, true, true},
    {PixelFormat::Bgrx8888, "BGRX8888", 4, false, false},
    {PixelFormat::Bgr565, "BGR565", 2, false, false},
    {PixelFormat::Bgrx5551, "BGRX5551", 2, false, false},
    {PixelFormat::Bgra4444, "BGRA4444", 2, false, true},
    {PixelFormat::Dxt1OneBitAlpha, "DXT1_ONEBITALPHA", 8, true, true},
    {PixelFormat::Bgra5551, "BGRA5551", 2, false, true},
    {PixelFormat::Uv88, "UV88", 2, false, false},
    {PixelFormat::Uvwq8888, "UVWQ8888", 4, false, true},
    {PixelFormat::Rgba16161616F, "RGBA16161616F", 8, false, true},
    {PixelFormat::Rgba16161616, "RGBA16161616", 8, false, true},
    {PixelFormat::Uvlx8888, "UVLX8888", 4, false, false},
};

constexpr VtfFlagName FlagNames[] = {
    {VtfPointSample, "point sample"},
    {VtfTrilinear, "trilinear"},
    {VtfClampS, "clamp S"},
    {VtfClampT, "clamp T"},
    {VtfAnisotropic, "anisotropic"},
    {VtfNormalMap, "normal map"},
    {VtfNoMips, "no mips"},
    {VtfNoLod, "no LOD"},
    {VtfOneBitAlpha, "one-bit alpha"},
    {VtfEightBitAlpha, "eight-bit alpha"},
    {VtfEnvironmentMap, "environment map"},
};

}  // namespace

const PixelFormatFacts* FindPixelFormat(PixelFormat format) {
  for (const PixelFormatFacts& facts : Formats) {
    if (facts.Format == format) return &facts;
  }
  return nullptr;
}

std::string PixelFormatName(PixelFormat format) {
  if (format == PixelFormat::None) return "none";
  const PixelFormatFacts* facts = FindPixelFormat(format);
  return facts != nullptr ? std::string(facts->Name) : "format " + std::to_string(static_cast<int32_t>(format));
}

int64_t ImageBytes(const PixelFormatFacts& facts, int width, int height) {
  const auto units = [&](int64_t pixels) { return facts.Blocks ? (pixels + 3) / 4 : pixels; };
  return units(width) * units(height) * facts.BytesPerUnit;
}

std::span<const VtfFlagName> VtfFlagNames() {
  return FlagNames;
}

}  // namespace tarnwick::textures

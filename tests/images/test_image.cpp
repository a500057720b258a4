#include "images/test_image.h"

#include <FreeImage.h>
#include <gtest/gtest.h>

#include <memory>

#include "core/paths.h"

namespace tarnwick::tests {

namespace {

using Bitmap = std::unique_ptr<FIBITMAP, decltype(&FreeImage_Unload)>;

#ifdef FREEIMAGE_LIB  // as a library of its own it does so by itself
[[maybe_unused]] const bool initialised = (FreeImage_Initialise(TRUE), true);
#endif

FREE_IMAGE_FORMAT FormatOf(const std::string& path) {
  return FreeImage_GetFIFFromFilename(path.c_str());
}

void Save(const Bitmap& bitmap, const std::string& path) {
#ifdef _WIN32
  const BOOL saved = FreeImage_SaveU(FormatOf(path), bitmap.get(), core::NativePath(path).c_str(), 0);
#else
  const BOOL saved = FreeImage_Save(FormatOf(path), bitmap.get(), path.c_str(), 0);
#endif
  EXPECT_TRUE(saved) << path << " cannot be written";
}

}  // namespace

bool HasFormat(const std::string& name) {
  return FreeImage_FIFSupportsWriting(FormatOf(name)) != FALSE;
}

TestImage MakeImage(int width, int height, int depth, const std::function<Rgba(int x, int y)>& colour) {
  TestImage image{width, height, depth, {}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) image.Pixels.push_back(colour(x, y));
  }
  return image;
}

TestImage Gradient(int width, int height, int depth) {
  return MakeImage(width, height, depth, [&](int x, int y) {
    return Rgba{static_cast<uint8_t>(x * 255 / width), static_cast<uint8_t>(y * 255 / height), 60, 200};
  });
}

void WriteImage(const std::string& path, const TestImage& image) {
  const Bitmap bitmap(FreeImage_Allocate(image.Width, image.Height, image.Depth), &FreeImage_Unload);
  for (int y = 0; y < image.Height; ++y) {
    const unsigned row = static_cast<unsigned>(image.Height - 1 - y);
    for (int x = 0; x < image.Width; ++x) {
      const Rgba& colour = image.At(x, y);
      RGBQUAD quad{colour.Blue, colour.Green, colour.Red, colour.Alpha};
      BYTE grey = colour.Red;
      if (image.Depth == 8)
        FreeImage_SetPixelIndex(bitmap.get(), static_cast<unsigned>(x), row, &grey);
      else
        FreeImage_SetPixelColor(bitmap.get(), static_cast<unsigned>(x), row, &quad);
    }
  }
  Save(bitmap, path);
}

void WriteDeepImage(const std::string& path, int width, int height, Rgba colour) {
  const Bitmap bitmap(FreeImage_AllocateT(FIT_RGB16, width, height), &FreeImage_Unload);
  for (int y = 0; y < height; ++y) {
    auto* line = reinterpret_cast<FIRGB16*>(FreeImage_GetScanLine(bitmap.get(), y));
    for (int x = 0; x < width; ++x) {
      line[x] = {static_cast<WORD>(colour.Red * 257), static_cast<WORD>(colour.Green * 257),
                 static_cast<WORD>(colour.Blue * 257)};
    }
  }
  Save(bitmap, path);
}

void WriteFloatImage(const std::string& path, int width, int height, std::array<float, 4> colour, bool alpha) {
  const size_t channels = alpha ? 4 : 3;
  const Bitmap bitmap(FreeImage_AllocateT(alpha ? FIT_RGBAF : FIT_RGBF, width, height), &FreeImage_Unload);
  for (int y = 0; y < height; ++y) {
    auto* line = reinterpret_cast<float*>(FreeImage_GetScanLine(bitmap.get(), y));
    for (int x = 0; x < width; ++x) std::copy_n(colour.begin(), channels, line + static_cast<size_t>(x) * channels);
  }
  Save(bitmap, path);
}

TestImage ReadImage(const std::string& path) {
#ifdef _WIN32
  const Bitmap stored(FreeImage_LoadU(FormatOf(path), core::NativePath(path).c_str(), 0), &FreeImage_Unload);
#else
  const Bitmap stored(FreeImage_Load(FormatOf(path), path.c_str(), 0), &FreeImage_Unload);
#endif
  EXPECT_TRUE(stored) << path << " cannot be read";
  if (!stored) return {};
  const Bitmap bitmap(FreeImage_ConvertTo32Bits(stored.get()), &FreeImage_Unload);
  const int height = static_cast<int>(FreeImage_GetHeight(bitmap.get()));
  return {static_cast<int>(FreeImage_GetWidth(bitmap.get())), height, static_cast<int>(FreeImage_GetBPP(stored.get())),
          MakeImage(static_cast<int>(FreeImage_GetWidth(bitmap.get())), height, 32, [&](int x, int y) {
            RGBQUAD quad{};
            FreeImage_GetPixelColor(bitmap.get(), static_cast<unsigned>(x), static_cast<unsigned>(height - 1 - y),
                                    &quad);
            return Rgba{quad.rgbRed, quad.rgbGreen, quad.rgbBlue, quad.rgbReserved};
          }).Pixels};
}

}  // namespace tarnwick::tests

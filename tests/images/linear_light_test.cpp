#include "conversion_fixture.h"

namespace tarnwick::tests {

namespace {

TEST_F(ConversionTest, TakesFloatsAsLinearLightAndKeepsTheirAlpha) {
  // Half the light is 188 of 255 in sRGB; what is brighter than white is white, what is darker than black black.
  for (const char* name : {"sky.exr", "sky.hdr"}) {
    SCOPED_TRACE(name);
    if (!HasFormat(name)) continue;  // its codec is left out on Windows
    const bool alpha = std::string_view(name) == "sky.exr";
    WriteFloatImage(Folder.Path(name), 4, 4, {0.5f, 7.0f, 0.0f, 0.25f}, alpha);
    const TestImage image = ReadImage(ToTga(Folder.Path(name)));
    EXPECT_EQ(image.Depth, alpha ? 32 : 24);
    EXPECT_NEAR(image.At(1, 1).Red, 188, 1);
    EXPECT_EQ(image.At(1, 1).Green, 255);
    EXPECT_EQ(image.At(1, 1).Blue, 0);
    EXPECT_EQ(image.At(1, 1).Alpha, alpha ? 64 : 255);
  }
}

TEST_F(ConversionTest, WritesLinearLightThatComesBackAsItWas) {
  const TestImage source = MakeImage(16, 16, 32, [](int x, int y) {
    return Rgba{static_cast<uint8_t>(x * 17), static_cast<uint8_t>(y * 17), 128, static_cast<uint8_t>(255 - x)};
  });
  WriteImage(Folder.Path("t.tga"), source);
  if (HasFormat("t.exr")) {
    ASSERT_TRUE(ToImage(Folder.Path("t.tga"), Out("t.exr")));
    const TestImage back = ReadImage(ToTga(Out("t.exr")));
    ASSERT_EQ(back.Depth, 32);
    for (size_t i = 0; i < source.Pixels.size(); ++i) {
      EXPECT_NEAR(back.Pixels[i].Red, source.Pixels[i].Red, 1);
      EXPECT_NEAR(back.Pixels[i].Green, source.Pixels[i].Green, 1);
      EXPECT_NEAR(back.Pixels[i].Alpha, source.Pixels[i].Alpha, 1);
    }
  }
  // HDR holds no alpha.
  ASSERT_TRUE(ToImage(Folder.Path("t.tga"), Out("h.hdr")));
  const TestImage hdr = ReadImage(ToTga(Out("h.hdr")));
  EXPECT_EQ(hdr.Depth, 24);
  EXPECT_NEAR(hdr.At(8, 3).Blue, 128, 2);
}

}  // namespace

}  // namespace tarnwick::tests

#include "controls/named_colors.h"

#include <gtest/gtest.h>

#include "controls/readable_color.h"

namespace tarnwick::controls {
namespace {

ColorValue Color(std::string_view text) {
  return CXNamedColors(text).GetRGB();
}

TEST(NamedColors, ReadsNamesAndHexadecimalFormsInAnyCase) {
  EXPECT_EQ(Color("#0000ff"), 0xFF0000u);
  EXPECT_EQ(Color("#0000FF"), 0xFF0000u);
  EXPECT_EQ(Color("#123456"), 0x563412u);
  EXPECT_EQ(Color("ALICEBLUE"), MakeColor(0xF0, 0xF8, 0xFF));
  EXPECT_EQ(Color("yellowgreen"), MakeColor(0x8B, 0xCD, 0x32));
  EXPECT_EQ(Color("Lightgrey"), MakeColor(0xD3, 0xD3, 0xD3));
  EXPECT_EQ(Color("gray"), MakeColor(0x7F, 0x7F, 0x7F));
}

TEST(NamedColors, TakesWhatMeansNothingForBlack) {
  for (const char* text : {"", "#", "#fff", "#ff00ff00", "ff00ff", "LightGray", "red ", " red", "nosuchcolor"}) {
    EXPECT_EQ(Color(text), 0u) << text;
  }
  EXPECT_EQ(CXNamedColors().GetRGB(), 0u);
}

TEST(NamedColors, ReadsABadPairAsFarAsItGoes) {
  EXPECT_EQ(Color("#zz80f!"), MakeColor(0, 0x80, 0x0F));
  EXPECT_EQ(Color("#0x+7 9"), MakeColor(0, 7, 9));
}

TEST(ReadableColor, LightensOnlyWhatCannotBeReadOnADarkWindow) {
  const ColorValue blue = MakeColor(0, 0, 255);
  const ColorValue dark = MakeColor(32, 35, 38);
  EXPECT_EQ(ReadableOn(blue, MakeColor(239, 239, 239)), blue);
  EXPECT_EQ(ReadableOn(MakeColor(255, 255, 0), dark), MakeColor(255, 255, 0));

  const ColorValue onDark = ReadableOn(blue, dark);
  EXPECT_GE(ContrastRatio(onDark, dark), 4.5);
  EXPECT_GT(BlueOf(onDark), RedOf(onDark)) << "still blue";
  EXPECT_NEAR(ContrastRatio(MakeColor(0, 0, 0), MakeColor(255, 255, 255)), 21.0, 1e-9);
}

}  // namespace
}  // namespace tarnwick::controls

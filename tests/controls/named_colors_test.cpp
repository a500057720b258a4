#include "controls/named_colors.h"

#include <gtest/gtest.h>

#include <QColor>
#include <map>
#include <set>
#include <string>

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
  EXPECT_EQ(Color("Lightgrey"), MakeColor(0xD3, 0xD3, 0xD3));
}

TEST(NamedColors, KnowsTheWebColoursButForThreeOfOtherShadeAndTheGreysOfOtherSpelling) {
  const std::map<std::string, ColorValue> others = {{"blanchedalmond", MakeColor(0xFF, 0xFF, 0xCD)},
                                                    {"gray", MakeColor(0x7F, 0x7F, 0x7F)},
                                                    {"yellowgreen", MakeColor(0x8B, 0xCD, 0x32)}};
  const std::set<std::string> unknown = {"darkgrey",  "darkslategrey",  "dimgrey",   "grey",
                                         "lightgray", "lightslategrey", "slategrey", "transparent"};
  int known = 0;
  for (const QString& qtName : QColor::colorNames()) {  // Qt has a table of its own
    const std::string name = qtName.toStdString();
    if (unknown.count(name) > 0) {
      EXPECT_EQ(Color(name), 0u) << name;
      continue;
    }
    const QColor web(qtName);
    const auto other = others.find(name);
    const auto part = [](int value) { return static_cast<unsigned>(value); };
    EXPECT_EQ(Color(name),
              other != others.end() ? other->second : MakeColor(part(web.red()), part(web.green()), part(web.blue())))
        << name;
    ++known;
  }
  EXPECT_EQ(known, 140);
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

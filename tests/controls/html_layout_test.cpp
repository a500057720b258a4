#include "controls/html_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controls/fixed_measure.h"

namespace tarnwick::controls {
namespace {

using ::testing::ElementsAre;

// Ten pixels a character and twenty a line.
const HtmlStart Start = {1, 2, {"", -20}};
constexpr Rect Wide = {0, 0, 1000, 1000};

HtmlLayout Layout(std::string_view source, const Rect& area, HtmlState& state) {
  return LayoutHtml(ScanHtml(source), Start, area, FixedMeasure(), state);
}

HtmlLayout Layout(std::string_view source, const Rect& area = Wide) {
  HtmlState state;
  return Layout(source, area, state);
}

/// Every fragment as "x,y text".
std::vector<std::string> Placed(const HtmlLayout& layout) {
  std::vector<std::string> placed;
  for (const HtmlFragment& f : layout.Fragments) {
    placed.push_back(std::to_string(f.Box.Left) + "," + std::to_string(f.Box.Top) + " " + f.Text);
  }
  return placed;
}

TEST(HtmlLayout, BreaksLinesBetweenWords) {
  // A line of 8 characters reaches 80 pixels and needs 83.
  EXPECT_THAT(Placed(Layout("one two three", {0, 0, 83, 1000})), ElementsAre("0,0 one two", "0,20 three"));
  EXPECT_THAT(Placed(Layout("one two three", {0, 0, 82, 1000})), ElementsAre("0,0 one", "0,20 two", "0,40 three"));
  EXPECT_THAT(Placed(Layout("one&nbsp;two three", {5, 7, 95, 1000})), ElementsAre("5,7 one two", "5,27 three"));
  EXPECT_THAT(Placed(Layout("one\r\n\r\n  two<br>three")), ElementsAre("0,0 one", "0,40 two", "0,60 three"));
  EXPECT_THAT(Placed(Layout("one\n<b>two</b>")), ElementsAre("0,0 one", "0,20 two"));
}

TEST(HtmlLayout, GoesOnWhereTheLastRunEnded) {
  EXPECT_THAT(Placed(Layout("one <b>two</b> three")), ElementsAre("0,0 one ", "40,0 two", "70,0  three"));
  EXPECT_THAT(Placed(Layout("one <b>twenty</b> x", {0, 0, 93, 1000})),
              ElementsAre("0,0 one ", "0,20 twenty", "60,20  x"));
}

TEST(HtmlLayout, LetsAWordThatIsTooWideStandAlone) {
  EXPECT_THAT(Placed(Layout("a incomprehensible b", {0, 0, 60, 1000})),
              ElementsAre("0,0 a", "0,20 incomprehensible", "0,40 b"));
}

TEST(HtmlLayout, LeavesOutLinesBelowTheBottom) {
  EXPECT_THAT(Placed(Layout("a<br>b<br>c", {0, 0, 100, 59})), ElementsAre("0,0 a", "0,20 b"));
  EXPECT_THAT(Placed(Layout("a", {0, 0, 100, 19})), ElementsAre());
  EXPECT_THAT(Placed(Layout("a", {0, 0, 0, 0})), ElementsAre());
}

TEST(HtmlLayout, CountsNestedTags) {
  const auto bold = [](std::string_view source) {
    std::string flags;
    for (const HtmlFragment& f : Layout(source).Fragments) flags += f.Font.Bold ? 'b' : '-';
    return flags;
  };
  EXPECT_EQ(bold("<b>x<b>x</b>x</b>x"), "bbb-");
  EXPECT_EQ(bold("</b>x<b>x</b>x"), "-b-");
}

TEST(HtmlLayout, AppliesAndTakesBackFontAttributes) {
  const auto layout = Layout("<font color=\"#000007\" bgcolor=\"#000009\" face=\"F\" size=\"10\">x</font><br>y");
  const HtmlFragment& x = layout.Fragments[0];
  EXPECT_EQ(x.TextColor, 7u << 16);
  EXPECT_EQ(x.BackgroundColor, 9u << 16);
  EXPECT_EQ(x.Font.Face, "F");
  EXPECT_EQ(x.Font.Height, -30);
  const HtmlFragment& y = layout.Fragments[1];
  EXPECT_EQ(y.TextColor, 1u);
  EXPECT_EQ(y.BackgroundColor, 2u);
  EXPECT_EQ(y.Font, Start.Font);
  EXPECT_EQ(y.Box.Top, 3 + 20) << "the descent of the larger font and the line of the break";
}

TEST(HtmlLayout, StepsTheHeightAndChangesTheFace) {
  const auto layout = Layout("<big><big>x</big>x</big><small>x<code>x</code>x");
  const auto height = [&](size_t i) { return layout.Fragments[i].Font.Height; };
  EXPECT_THAT((std::vector{height(0), height(1), height(2), height(3), height(4)}),
              ElementsAre(-22, -21, -19, -19, -20));
  EXPECT_EQ(layout.Fragments[3].Font.Face, "Courier New");
  EXPECT_EQ(layout.Fragments[4].Font.Face, "");
}

TEST(HtmlLayout, ShiftsSubscriptsAndSuperscripts) {
  EXPECT_THAT(Placed(Layout("<br>a<sub>b</sub><sup>c</sup><sub><sup>d</sup></sub>e")),
              ElementsAre("0,20 a", "10,29 b", "20,11 c", "30,20 d", "40,20 e"));
  EXPECT_THAT(Placed(Layout("a<sup>2</sup>")), ElementsAre("0,9 a", "10,0 2"));
  EXPECT_THAT(Placed(Layout("a<sup>2</sup>", {0, 0, 100, 21})), ElementsAre("0,0 a", "10,-9 2")) << "no room";
}

TEST(HtmlLayout, DrawsARuleBelowTheLine) {
  const auto layout = Layout("a<hr size=6>b<hr>c", {3, 0, 50, 1000});
  EXPECT_THAT(Placed(layout), ElementsAre("3,0 a", "3,26 b", "3,52 c"));
  ASSERT_EQ(layout.Rules.size(), 2u);
  EXPECT_EQ(layout.Rules[0].Box, (Rect{3, 20, 50, 26}));
  EXPECT_EQ(layout.Rules[1].Box, (Rect{3, 46, 50, 52})) << "the size holds for the rules that follow";
  HtmlState state;
  for (int painting = 0; painting < 2; ++painting) {
    EXPECT_EQ(Layout("a<hr>b<hr size=6>", Wide, state).Rules[0].Box.Height(), 2) << painting;
  }
  EXPECT_TRUE(Layout("a<hr size=99999><hr size=99999>", {0, 0, 50, 20}).Rules.empty());
}

TEST(HtmlLayout, KnowsWhereItsLinksAre) {
  const auto layout =
      Layout("see <a href=http://x>this <b>page</b></a> or <a href=mailto:y>write</a>", {0, 0, 113, 1000});
  // "see this " and "page or " fill a line each.
  EXPECT_THAT(Placed(layout), ElementsAre("0,0 see ", "40,0 this ", "0,20 page", "40,20  or ", "0,40 write"));
  EXPECT_THAT(layout.LinkRects, ElementsAre(Rect{40, 0, 90, 20}, Rect{0, 20, 40, 40}, Rect{0, 40, 50, 60}));
  EXPECT_THAT(layout.LinkUrls, ElementsAre("http://x", "http://x", "mailto:y"));
  EXPECT_THAT(layout.LinkNumbers, ElementsAre(0, 0, 1));
  EXPECT_EQ(layout.LinkAt(40, 0), 0);
  EXPECT_EQ(layout.LinkAt(39, 0), -1);
  EXPECT_EQ(layout.LinkAt(49, 59), 2);
  EXPECT_EQ(layout.LinkAt(50, 59), -1);

  const auto wrapped = Layout("<a href=z>one two three</a>", {0, 0, 83, 1000});
  EXPECT_THAT(wrapped.LinkRects, ElementsAre(Rect{0, 0, 80, 20}, Rect{0, 20, 50, 40}));
}

TEST(HtmlLayout, CarriesOpenTagsIntoTheNextPainting) {
  HtmlState state;
  Layout("<b>x</b><i>y</i><a href=z>u</a>", Wide, state);
  EXPECT_EQ(state, HtmlState());
  EXPECT_FALSE(Layout("x<b>y", Wide, state).Fragments[0].Font.Bold);
  EXPECT_TRUE(Layout("x<b>y", Wide, state).Fragments[0].Font.Bold);
}

TEST(HtmlLayout, TellsTheRoomThatATextNeeds) {
  const auto tokens = ScanHtml("one two<br>three");
  const Extent natural = NaturalSize(tokens, Start, FixedMeasure());
  EXPECT_EQ(natural, (Extent{73, 40}));
  EXPECT_EQ(HeightForWidth(tokens, Start, natural.Width, FixedMeasure()), 40);
  EXPECT_EQ(HeightForWidth(tokens, Start, natural.Width - 1, FixedMeasure()), 60);

  const auto lines = ScanHtml("a one \r\nb");
  EXPECT_EQ(HeightForWidth(lines, Start, NaturalSize(lines, Start, FixedMeasure()).Width, FixedMeasure()), 40);
}

}  // namespace
}  // namespace tarnwick::controls

#include "controls/html_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "controls/html_entities.h"

namespace tarnwick::controls {
namespace {

using ::testing::ElementsAre;

/// The tokens of `source`, each as a short text: the characters of a run in brackets, a tag as its number and + or -.
std::vector<std::string> Parts(std::string_view source) {
  std::vector<std::string> parts;
  for (const HtmlToken& token : ScanHtml(source)) {
    if (token.Part == HtmlPart::Text) {
      parts.push_back('[' + UnmarkEntities(token.Text) + ']');
    } else {
      parts.push_back(std::to_string(static_cast<int>(token.Part)) + (token.Opens ? "+" : "-"));
    }
  }
  return parts;
}

std::string Tag(HtmlPart part, bool opens) {
  return std::to_string(static_cast<int>(part)) + (opens ? "+" : "-");
}

TEST(HtmlScan, KnowsItsTagsInAnyCase) {
  EXPECT_THAT(Parts("<b>x</B><Strike></sTRIKE><sub></SUB><code><br>"),
              ElementsAre(Tag(HtmlPart::Bold, true), "[x]", Tag(HtmlPart::Bold, false), Tag(HtmlPart::Strike, true),
                          Tag(HtmlPart::Strike, false), Tag(HtmlPart::Subscript, true), Tag(HtmlPart::Subscript, false),
                          Tag(HtmlPart::Code, true), Tag(HtmlPart::LineBreak, true)));
}

TEST(HtmlScan, ShowsWhatIsNoTagAsText) {
  EXPECT_THAT(Parts("1 < 2 <p>"), ElementsAre("[1 ]", "[<]", "[ 2 ]", "[<]", "[p>]"));
  EXPECT_THAT(Parts("<fonts><href>"), ElementsAre("[<]", "[fonts>]", "[<]", "[href>]"));
}

TEST(HtmlScan, ShowsEverythingFromAnUnterminatedTagOnAsText) {
  EXPECT_THAT(Parts("<b>x<font color=\"red\" <b"),
              ElementsAre(Tag(HtmlPart::Bold, true), "[x]", "[<font color=\"red\" <b]"));
  EXPECT_THAT(Parts("x<a href=http://y"), ElementsAre("[x]", "[<a href=http://y]"));
  EXPECT_THAT(Parts("<hr size=3"), ElementsAre("[<hr size=3]"));
  EXPECT_THAT(Parts("<"), ElementsAre("[<]"));
}

TEST(HtmlScan, TakesAnEntityForTextAndNotForATag) {
  EXPECT_THAT(Parts("&lt;b&gt;"), ElementsAre("[<b>]"));
  EXPECT_THAT(Parts("&amp;lt; &LT; &nope; &lt"), ElementsAre("[&lt; &LT; &nope; &lt]"));
  EXPECT_THAT(Parts("&bull;&copy;&euro;&iquest;&para;&pound;&quot;&reg;&trade;"), ElementsAre("[•©€¿¶£\"®™]"));
}

TEST(HtmlScan, ReadsTheAttributesOfAFont) {
  const FontAttributes font =
      ScanHtml("<FONT  junk color = \"#0000FF\" BgColor=\"Yellow\"\tface=\"Liberation Sans\" size=\"-3pt\">")[0].Font;
  EXPECT_EQ(font.Color, MakeColor(0, 0, 255));
  EXPECT_EQ(font.Background, MakeColor(255, 255, 0));
  EXPECT_EQ(font.Face, "Liberation Sans");
  EXPECT_EQ(font.Enlarge, -3);

  const FontAttributes unquoted = ScanHtml("<font size=\"2\" color=red>")[0].Font;
  EXPECT_EQ(unquoted.Enlarge, 2);
  EXPECT_FALSE(unquoted.Color) << "a value without quotes ends the tag";
  EXPECT_FALSE(unquoted.Face);

  EXPECT_EQ(ScanHtml("<font face=\"123456789012345678901234567890ü\">")[0].Font.Face, "123456789012345678901234567890");
  EXPECT_EQ(ScanHtml("<font size=\"99999999999\" size=\"99999999999\">")[0].Font.Enlarge, 10'000);
}

TEST(HtmlScan, ReadsAddressAndRuleSize) {
  EXPECT_EQ(ScanHtml("<a href=\"http://x/?a=1&amp;b=2\">")[0].Address, "\"http://x/?a=1&b=2\"");
  EXPECT_EQ(ScanHtml("<hr>")[0].RuleSize, std::nullopt);
  EXPECT_EQ(ScanHtml("<HR width=9 size=5>")[0].RuleSize, 5);
  EXPECT_EQ(ScanHtml("<HR SIZE = \"7\">")[0].RuleSize, 7);
  EXPECT_EQ(ScanHtml("<HR SIZE=-7>")[0].RuleSize, 0);
}

TEST(HtmlScan, GivesTheWordsWithoutTheMarkup) {
  EXPECT_EQ(PlainHtmlText(" <b>Go</b> to:<br>\r\n <a href=http://x><u>the page</u></a> &copy;<hr>"),
            "Go to: the page ©");
}

TEST(HtmlScan, LosesNoTextOfAnyInput) {
  // Whatever stands between tags comes out again, and damaged marks, quotes and tags end.
  std::mt19937 random(7);
  const std::string_view pieces[] = {"<",    ">",    "\"",   "<font ", "<a href=", "<hr",
                                     "</b>", "&lt;", "\x01", "ü",      "size=",    " "};
  for (int round = 0; round < 5000; ++round) {
    std::string source;
    for (int i = 0; i < 12; ++i) source += pieces[random() % std::size(pieces)];
    source += "end";
    const auto tokens = ScanHtml(source);
    ASSERT_FALSE(tokens.empty());
    ASSERT_EQ(tokens.back().Part, HtmlPart::Text) << source;
    EXPECT_TRUE(UnmarkEntities(tokens.back().Text).ends_with("nd")) << source;
  }
}

}  // namespace
}  // namespace tarnwick::controls

#include "controls/html_scan.h"

#include <algorithm>
#include <cstdlib>

#include "controls/html_entities.h"
#include "core/paths.h"

namespace tarnwick::controls {
namespace {

struct SimpleTag {
  std::string_view Text;
  HtmlPart Part;
  bool Opens;
};

constexpr SimpleTag SimpleTags[] = {
    {"<B>", HtmlPart::Bold, true},          {"</B>", HtmlPart::Bold, false},
    {"<I>", HtmlPart::Italic, true},        {"</I>", HtmlPart::Italic, false},
    {"<U>", HtmlPart::Underline, true},     {"</U>", HtmlPart::Underline, false},
    {"<STRIKE>", HtmlPart::Strike, true},   {"</STRIKE>", HtmlPart::Strike, false},
    {"<BIG>", HtmlPart::Big, true},         {"</BIG>", HtmlPart::Big, false},
    {"<SMALL>", HtmlPart::Small, true},     {"</SMALL>", HtmlPart::Small, false},
    {"<SUB>", HtmlPart::Subscript, true},   {"</SUB>", HtmlPart::Subscript, false},
    {"<SUP>", HtmlPart::Superscript, true}, {"</SUP>", HtmlPart::Superscript, false},
    {"</FONT>", HtmlPart::Font, false},     {"<CODE>", HtmlPart::Code, true},
    {"</CODE>", HtmlPart::Code, false},     {"</A>", HtmlPart::Anchor, false},
    {"<BR>", HtmlPart::LineBreak, true},
};

constexpr std::string_view FontTag = "<FONT";
constexpr std::string_view AnchorTag = "<A HREF=";
constexpr std::string_view RuleTag = "<HR";

constexpr size_t LongestFace = 31;
/// Keeps sums of sizes far from the ends of an int; no font is as large.
constexpr int LargestNumber = 10'000;

bool StartsWith(std::string_view text, std::string_view front) {
  return core::EqualIgnoringCase(text.substr(0, front.size()), front);
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

void SkipBlanks(std::string_view& text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
}

void SkipToBlank(std::string_view& text) {
  while (!text.empty() && !IsBlank(text.front())) text.remove_prefix(1);
}

/// Whether `text` starts with the tag name `name` as a whole: "<HR>" and "<HR SIZE=3>" do for "<HR", "<HREF>" does not.
bool StartsWithTag(std::string_view text, std::string_view name) {
  if (!StartsWith(text, name)) return false;
  return text.size() == name.size() || text[name.size()] == '>' || IsBlank(text[name.size()]);
}

int Number(std::string_view text) {
  return std::clamp(std::atoi(UnmarkEntities(text).c_str()), -LargestNumber, LargestNumber);
}

/// `face` cut to LongestFace bytes, not inside a character.
std::string ShortFace(std::string face) {
  if (face.size() <= LongestFace) return face;
  size_t end = LongestFace;
  while (end > 0 && (static_cast<unsigned char>(face[end]) & 0xC0) == 0x80) --end;
  face.resize(end);
  return face;
}

/// Takes the value between the next two double quotes off the front of `rest`; without a second quote it reaches to
/// the end. Nothing if there is no quote.
std::optional<std::string> TakeQuoted(std::string_view& rest) {
  const size_t open = rest.find('"');
  if (open == std::string_view::npos) return std::nullopt;
  rest.remove_prefix(open + 1);
  const std::string_view value = rest.substr(0, rest.find('"'));
  rest.remove_prefix(std::min(rest.size(), value.size() + 1));
  return UnmarkEntities(value);
}

FontAttributes ScanFontAttributes(std::string_view rest) {
  FontAttributes font;
  for (SkipBlanks(rest); !rest.empty(); SkipBlanks(rest)) {
    const bool color = StartsWith(rest, "COLOR");
    const bool background = StartsWith(rest, "BGCOLOR");
    const bool face = StartsWith(rest, "FACE");
    const bool size = StartsWith(rest, "SIZE");
    if (!color && !background && !face && !size) {
      SkipToBlank(rest);
      continue;
    }
    const std::optional<std::string> value = TakeQuoted(rest);
    if (!value) break;
    if (color) font.Color = CXNamedColors(*value).GetRGB();
    if (background) font.Background = CXNamedColors(*value).GetRGB();
    if (face) font.Face = ShortFace(*value);
    if (size) {
      font.Enlarge = std::clamp(font.Enlarge + Number(*value), -LargestNumber, LargestNumber);
      font.HasSize = true;
    }
  }
  return font;
}

std::optional<int> ScanRuleSize(std::string_view rest) {
  std::optional<int> size;
  for (SkipBlanks(rest); !rest.empty(); SkipBlanks(rest)) {
    if (StartsWith(rest, "SIZE")) {
      std::string_view value = rest.substr(4);
      SkipBlanks(value);
      if (value.starts_with('=')) {
        value.remove_prefix(1);
        SkipBlanks(value);
        if (value.starts_with('"')) value.remove_prefix(1);
        size = std::max(0, Number(value));
      }
    }
    SkipToBlank(rest);
  }
  return size;
}

/// What stands at a "<".
struct ScannedTag {
  enum { Known, Unknown, Unterminated } Result = Unknown;
  HtmlToken Token;    // of a known tag
  size_t Length = 0;  // of a known tag, its ">" included
};

ScannedTag ScanTag(std::string_view rest) {
  ScannedTag scanned;
  for (const SimpleTag& tag : SimpleTags) {
    if (!StartsWith(rest, tag.Text)) continue;
    scanned.Result = ScannedTag::Known;
    scanned.Token.Part = tag.Part;
    scanned.Token.Opens = tag.Opens;
    scanned.Length = tag.Text.size();
    return scanned;
  }
  const bool font = StartsWithTag(rest, FontTag);
  const bool anchor = StartsWith(rest, AnchorTag);
  const bool rule = StartsWithTag(rest, RuleTag);
  if (!font && !anchor && !rule) return scanned;
  const size_t close = rest.find('>');
  scanned.Result = close == std::string_view::npos ? ScannedTag::Unterminated : ScannedTag::Known;
  if (scanned.Result == ScannedTag::Unterminated) return scanned;
  scanned.Length = close + 1;
  const auto inside = [&](std::string_view tag) { return rest.substr(tag.size(), close - tag.size()); };
  if (font) {
    scanned.Token.Part = HtmlPart::Font;
    scanned.Token.Font = ScanFontAttributes(inside(FontTag));
  } else if (anchor) {
    scanned.Token.Part = HtmlPart::Anchor;
    scanned.Token.Address = UnmarkEntities(inside(AnchorTag));
  } else {
    scanned.Token.Part = HtmlPart::Rule;
    scanned.Token.RuleSize = ScanRuleSize(inside(RuleTag));
  }
  return scanned;
}

}  // namespace

std::vector<HtmlToken> ScanHtml(std::string_view source) {
  const std::string marked = MarkEntities(source);
  std::vector<HtmlToken> tokens;
  for (std::string_view rest = marked; !rest.empty();) {
    size_t length = 1;
    if (rest.front() != '<') {
      length = std::min(rest.find('<'), rest.size());
    } else if (ScannedTag tag = ScanTag(rest); tag.Result == ScannedTag::Known) {
      tokens.push_back(std::move(tag.Token));
      rest.remove_prefix(tag.Length);
      continue;
    } else if (tag.Result == ScannedTag::Unterminated) {
      length = rest.size();
    }
    tokens.emplace_back().Text = rest.substr(0, length);
    rest.remove_prefix(length);
  }
  return tokens;
}

std::string PlainHtmlText(std::string_view source) {
  std::string words;
  const auto add = [&words](std::string_view text) {
    for (const char c : text) {
      if (!IsBlank(c)) {
        words += c;
      } else if (!words.empty() && words.back() != ' ') {
        words += ' ';
      }
    }
  };
  for (const HtmlToken& token : ScanHtml(source)) {
    if (token.Part == HtmlPart::Text) add(UnmarkEntities(token.Text));
    if (token.Part == HtmlPart::LineBreak || token.Part == HtmlPart::Rule) add(" ");
  }
  if (words.ends_with(' ')) words.pop_back();
  return words;
}

}  // namespace tarnwick::controls

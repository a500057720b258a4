#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/named_colors.h"

namespace tarnwick::controls {

/// What a piece of the markup does.
enum class HtmlPart {
  Text,
  LineBreak,
  Rule,
  Bold,
  Italic,
  Underline,
  Strike,
  Big,
  Small,
  Subscript,
  Superscript,
  Font,
  Code,
  Anchor,
};

/// A FONT tag's attributes, in effect only where given; of an attribute given twice the last counts.
struct FontAttributes {
  std::optional<ColorValue> Color;       // COLOR
  std::optional<ColorValue> Background;  // BGCOLOR
  std::optional<std::string> Face;       // FACE, at most 31 bytes
  int Enlarge = 0;                       // SIZE, added up; positive makes the text larger
  bool HasSize = false;
};

/// One tag, or a run of text between tags.
struct HtmlToken {
  HtmlPart Part = HtmlPart::Text;
  bool Opens = true;            // false for "</...>"
  std::string Text;             // Text: the characters, entities still marked (see MarkEntities)
  std::string Address;          // Anchor: what stands between "=" and ">", quotes and all, entities resolved
  FontAttributes Font;          // Font
  std::optional<int> RuleSize;  // Rule: its thickness in pixels, if given
};

/// Takes `source` apart into tags and text. Known are B, I, U, STRIKE, BIG, SMALL, SUB, SUP, FONT, CODE, A HREF=, HR
/// and BR, in any case. A "<" that starts none of them is text of its own, and so is everything from a FONT, A or HR
/// tag on that has no ">".
///
///     ScanHtml("<b>5 &lt; 6</b>")  // Bold, Text "5 \x01\x08 6", Bold that closes
std::vector<HtmlToken> ScanHtml(std::string_view source);

/// The words of `source` without its markup: what a screen reader says. A line break or a rule gives a blank.
std::string PlainHtmlText(std::string_view source);

}  // namespace tarnwick::controls

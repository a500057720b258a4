#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "controls/html_scan.h"
#include "controls/named_colors.h"
#include "controls/rect.h"
#include "controls/text_measure.h"

namespace tarnwick::controls {

/// What a text leaves behind for the next painting of the same text. Balanced markup brings it back to its start; a tag
/// that is left open holds from the top the next time.
struct HtmlState {
  uint32_t Underline = 0;  // open tags of each kind
  uint32_t Bold = 0;
  uint32_t Italic = 0;
  uint32_t Strike = 0;
  uint32_t Subscript = 0;
  uint32_t Superscript = 0;
  uint32_t RulesPending = 0;  // rules to be drawn behind the next line break
  bool InAnchor = false;
  std::string Address;  // of the anchor

  bool operator==(const HtmlState&) const = default;
};

/// What a text starts from.
struct HtmlStart {
  ColorValue TextColor = 0;
  ColorValue BackgroundColor = 0;
  HtmlFont Font;  // Height is the real one, not 0
};

/// A piece of text to draw: the top left corner of `Box` is that of the text.
struct HtmlFragment {
  std::string Text;
  Rect Box;
  HtmlFont Font;
  ColorValue TextColor = 0;
  ColorValue BackgroundColor = 0;
};

/// A horizontal rule.
struct HtmlRule {
  Rect Box;
  ColorValue Color = 0;
};

/// Where everything of a text goes.
struct HtmlLayout {
  std::vector<HtmlFragment> Fragments;
  std::vector<HtmlRule> Rules;
  // Parallel: a rectangle of link text, one for each line that the link takes; its address; and which of the text's
  // links it belongs to, counted from 0.
  std::vector<Rect> LinkRects;
  std::vector<std::string> LinkUrls;
  std::vector<int> LinkNumbers;

  /// The index in LinkRects of the first rectangle at the point; -1 if there is none.
  int LinkAt(int x, int y) const;
  /// The extent of text and rules from the origin.
  Extent Size() const;
};

/// Lays `tokens` out in `area`, with `state` as the last time left it. Fonts of different size on a line share their
/// top, not their foot; nothing is placed below `area`. Where there is room the text starts lower, so that a
/// superscript of the first line is not cut off.
HtmlLayout LayoutHtml(const std::vector<HtmlToken>& tokens, const HtmlStart& start, const Rect& area,
                      const TextMeasure& measure, HtmlState& state);

/// The smallest extent in which `tokens` break no line that they do not break themselves.
Extent NaturalSize(const std::vector<HtmlToken>& tokens, const HtmlStart& start, const TextMeasure& measure,
                   const HtmlState& state = {});

/// The width below which a word of `tokens` is cut off.
int WidestWord(const std::vector<HtmlToken>& tokens, const HtmlStart& start, const TextMeasure& measure,
               const HtmlState& state = {});

/// The height that `tokens` need in an area `width` pixels wide.
int HeightForWidth(const std::vector<HtmlToken>& tokens, const HtmlStart& start, int width, const TextMeasure& measure,
                   const HtmlState& state = {});

}  // namespace tarnwick::controls

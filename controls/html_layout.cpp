#include "controls/html_layout.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "controls/word_wrap.h"

namespace tarnwick::controls {
namespace {

/// Wider and higher than any text, and far from the ends of an int.
constexpr int Unlimited = 1 << 24;
/// A line is full 2 pixels before the right edge.
constexpr int RightMargin = 3;
constexpr int LargestFontHeight = 500;
constexpr int FirstRuleSize = 2;

void Count(uint32_t& counter, bool up) {
  if (up) {
    ++counter;
  } else if (counter > 0) {
    --counter;
  }
}

/// `height` one unit further from 0, or nearer to it, whatever its sign.
int StepHeight(int height, bool grow) {
  if (height == 0) return grow ? -1 : 0;
  if (grow && std::abs(height) >= LargestFontHeight) return height;
  return (height > 0) == grow ? height + 1 : height - 1;
}

class Layouter {
 public:
  Layouter(const HtmlStart& start, const Rect& area, const TextMeasure& measure, HtmlState& state)
      : m_start(start),
        m_measure(measure),
        m_state(state),
        m_area(area),
        m_currentY(area.Top),
        m_font(start.Font),
        m_textColor(start.TextColor),
        m_backgroundColor(start.BackgroundColor) {}

  void Take(const HtmlToken& token);
  HtmlLayout Result() && { return std::move(m_layout); }

 private:
  void OpenFont(const FontAttributes& attributes);
  void CloseFont();
  void Run(std::string_view text, bool isBreak);
  HtmlFont RunFont() const;
  void DrawRule();

  const HtmlStart& m_start;
  const TextMeasure& m_measure;
  HtmlState& m_state;
  HtmlLayout m_layout;
  Rect m_area;
  int m_x = 0;
  int m_currentY;
  HtmlFont m_font;
  ColorValue m_textColor;
  ColorValue m_backgroundColor;
  bool m_sizeChanged = false;
  int m_lastDescent = 0;
  int m_ruleSize = FirstRuleSize;  // holds for the rules that follow, too
  int m_anchors = 0;               // seen so far
  int m_lastLinked = -1;           // the anchor of the last rectangle; -1: none yet
};

void Layouter::Take(const HtmlToken& token) {
  switch (token.Part) {
    case HtmlPart::Text:
      return Run(token.Text, false);
    case HtmlPart::LineBreak:
      return Run("\r\n", true);
    case HtmlPart::Rule:
      m_ruleSize = token.RuleSize.value_or(m_ruleSize);
      ++m_state.RulesPending;
      return Run("\r\n", true);
    case HtmlPart::Bold:
      return Count(m_state.Bold, token.Opens);
    case HtmlPart::Italic:
      return Count(m_state.Italic, token.Opens);
    case HtmlPart::Underline:
      return Count(m_state.Underline, token.Opens);
    case HtmlPart::Strike:
      return Count(m_state.Strike, token.Opens);
    case HtmlPart::Subscript:
      return Count(m_state.Subscript, token.Opens);
    case HtmlPart::Superscript:
      return Count(m_state.Superscript, token.Opens);
    case HtmlPart::Big:
      m_font.Height = StepHeight(m_font.Height, token.Opens);
      return;
    case HtmlPart::Small:
      m_font.Height = StepHeight(m_font.Height, !token.Opens);
      return;
    case HtmlPart::Font:
      return token.Opens ? OpenFont(token.Font) : CloseFont();
    case HtmlPart::Code:
      if (token.Opens) {
        m_font.Face = "Courier New";
      } else {
        m_font = m_start.Font;
      }
      return;
    case HtmlPart::Anchor:
      m_state.InAnchor = token.Opens;
      m_state.Address = token.Address;
      if (token.Opens) ++m_anchors;
      return;
  }
}

void Layouter::OpenFont(const FontAttributes& attributes) {
  m_textColor = attributes.Color.value_or(m_textColor);
  m_backgroundColor = attributes.Background.value_or(m_backgroundColor);
  m_font.Face = attributes.Face.value_or(m_font.Face);
  m_font.Height = std::clamp(m_font.Height - attributes.Enlarge, -LargestFontHeight, LargestFontHeight);
  m_sizeChanged = m_sizeChanged || attributes.HasSize;
}

void Layouter::CloseFont() {
  m_textColor = m_start.TextColor;
  m_backgroundColor = m_start.BackgroundColor;
  m_font = m_start.Font;
  // Lets the text that follows on the line stand lower, about at the foot of the larger text.
  if (std::exchange(m_sizeChanged, false)) m_currentY = std::min(m_currentY + m_lastDescent, m_area.Bottom);
}

HtmlFont Layouter::RunFont() const {
  HtmlFont font = m_font;
  font.Bold = m_state.Bold > 0;
  font.Italic = m_state.Italic > 0;
  font.Underline = m_state.Underline > 0;
  font.Strike = m_state.Strike > 0;
  return font;
}

void Layouter::Run(std::string_view text, bool isBreak) {
  const HtmlFont font = RunFont();
  const FontExtent metrics = m_measure.Metrics(font);
  m_lastDescent = metrics.Descent;

  int shift = 0;
  if (m_state.Subscript > 0) shift += metrics.Ascent / 2;
  if (m_state.Superscript > 0) shift -= metrics.Ascent / 2;
  m_currentY += shift;
  m_area.MoveDown(shift);
  std::vector<TextLine> lines;
  m_x = DrawTextRun(text, font, m_measure, m_x, m_area, m_currentY, lines);
  if (isBreak) m_x = 0;
  m_currentY -= shift;
  m_area.MoveDown(-shift);

  for (TextLine& line : lines) {
    if (m_state.InAnchor) {
      const int last = m_layout.LinkNumbers.empty() ? -1 : m_layout.LinkNumbers.back();
      m_layout.LinkNumbers.push_back(m_anchors == std::exchange(m_lastLinked, m_anchors) ? last : last + 1);
      m_layout.LinkRects.push_back(line.Box);
      m_layout.LinkUrls.push_back(m_state.Address);
    }
    m_layout.Fragments.push_back({std::move(line.Text), line.Box, font, m_textColor, m_backgroundColor});
  }
  if (m_state.RulesPending > 0) DrawRule();
}

void Layouter::DrawRule() {
  const int thickness = std::max(1, m_ruleSize);
  const Rect box = {m_area.Left, m_area.Top, m_area.Right, std::min(m_area.Top + thickness, m_area.Bottom)};
  if (box.Height() > 0) m_layout.Rules.push_back({box, m_textColor});
  m_currentY = std::min(m_currentY + m_ruleSize, m_area.Bottom);
  m_area.Top = std::min(m_area.Top + m_ruleSize, m_area.Bottom);
  m_x = 0;
  --m_state.RulesPending;
}

}  // namespace

int HtmlLayout::LinkAt(int x, int y) const {
  const auto hit = std::find_if(LinkRects.begin(), LinkRects.end(), [=](const Rect& r) { return r.Contains(x, y); });
  return hit == LinkRects.end() ? -1 : static_cast<int>(hit - LinkRects.begin());
}

Extent HtmlLayout::Size() const {
  Extent size;
  for (const HtmlFragment& fragment : Fragments) {
    size.Width = std::max(size.Width, fragment.Box.Right);
    size.Height = std::max(size.Height, fragment.Box.Bottom);
  }
  for (const HtmlRule& rule : Rules) size.Height = std::max(size.Height, rule.Box.Bottom);
  return size;
}

HtmlLayout LayoutHtml(const std::vector<HtmlToken>& tokens, const HtmlStart& start, const Rect& area,
                      const TextMeasure& measure, HtmlState& state) {
  const HtmlState before = state;
  const auto layOut = [&](const Rect& place) {
    state = before;
    Layouter layouter(start, place, measure, state);
    for (const HtmlToken& token : tokens) layouter.Take(token);
    return std::move(layouter).Result();
  };
  HtmlLayout layout = layOut(area);
  int top = area.Top;
  for (const HtmlFragment& fragment : layout.Fragments) top = std::min(top, fragment.Box.Top);
  if (top == area.Top) return layout;
  HtmlLayout lower = layOut({area.Left, 2 * area.Top - top, area.Right, area.Bottom});
  const bool allFits = lower.Fragments.size() == layout.Fragments.size() && lower.Rules.size() == layout.Rules.size();
  return allFits ? lower : layout;
}

Extent NaturalSize(const std::vector<HtmlToken>& tokens, const HtmlStart& start, const TextMeasure& measure,
                   const HtmlState& state) {
  HtmlState after = state;
  const Extent text = LayoutHtml(tokens, start, {0, 0, Unlimited, Unlimited}, measure, after).Size();
  return {text.Width + RightMargin, text.Height};
}

int WidestWord(const std::vector<HtmlToken>& tokens, const HtmlStart& start, const TextMeasure& measure,
               const HtmlState& state) {
  HtmlState after = state;
  return LayoutHtml(tokens, start, {0, 0, 0, Unlimited}, measure, after).Size().Width;
}

int HeightForWidth(const std::vector<HtmlToken>& tokens, const HtmlStart& start, int width, const TextMeasure& measure,
                   const HtmlState& state) {
  HtmlState after = state;
  return LayoutHtml(tokens, start, {0, 0, width, Unlimited}, measure, after).Size().Height;
}

}  // namespace tarnwick::controls

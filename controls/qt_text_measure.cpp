#include "controls/qt_text_measure.h"

#include <QFontInfo>
#include <QStringList>
#include <algorithm>

#include "platform/text.h"

namespace tarnwick::controls {

QtTextMeasure::QtTextMeasure(const QFont& base) : m_base(base), m_baseHeight(std::max(1, QFontInfo(base).pixelSize())) {
  m_known.reserve(4);
}

QFont QtTextMeasure::MakeFont(const HtmlFont& font) const {
  QFont made = m_base;
  if (!font.Face.empty()) {
    made.setFamilies(QStringList(platform::ToQt(font.Face)) + m_base.families());
    if (font.Face.starts_with("Courier")) made.setStyleHint(QFont::Monospace);
  }
  // A share of the control's size, so that a size that is not a whole number of pixels keeps its fraction.
  const double unit = font.Height > 0 ? QFontMetrics(m_base).height() : m_baseHeight;
  const double share = font.Height == 0 ? 1.0 : std::abs(font.Height) / unit;
  if (m_base.pointSizeF() > 0) {
    made.setPointSizeF(m_base.pointSizeF() * share);
  } else {
    made.setPixelSize(std::max(1, qRound(m_base.pixelSize() * share)));
  }
  made.setWeight(font.Bold ? QFont::Bold : QFont::Normal);
  made.setItalic(font.Italic);
  made.setUnderline(font.Underline);
  made.setStrikeOut(font.Strike);
  return made;
}

const QtTextMeasure::Entry& QtTextMeasure::Known(const HtmlFont& font) const {
  const auto known =
      std::find_if(m_known.begin(), m_known.end(), [&](const Entry& entry) { return entry.Key == font; });
  if (known != m_known.end()) return *known;
  const QFont made = MakeFont(font);
  m_known.push_back({font, made, QFontMetrics(made)});
  return m_known.back();
}

int QtTextMeasure::Width(std::string_view text, const HtmlFont& font) const {
  return Known(font).Measures.horizontalAdvance(platform::ToQt(text));
}

FontExtent QtTextMeasure::Metrics(const HtmlFont& font) const {
  const QFontMetrics& measures = Known(font).Measures;
  return {measures.ascent(), measures.descent(), measures.height()};
}

}  // namespace tarnwick::controls

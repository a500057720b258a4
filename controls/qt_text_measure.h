#pragma once

#include <QFont>
#include <QFontMetrics>
#include <vector>

#include "controls/text_measure.h"

namespace tarnwick::controls {

/// Measures with Qt's fonts, starting from a control's own.
class QtTextMeasure : public TextMeasure {
 public:
  explicit QtTextMeasure(const QFont& base);

  int Width(std::string_view text, const HtmlFont& font) const override;
  FontExtent Metrics(const HtmlFont& font) const override;

  /// The control's own font, regular and not underlined.
  HtmlFont BaseFont() const { return {{}, -m_baseHeight}; }
  /// The font that `font` asks for; where a face is missing the control's own stands in.
  const QFont& FontOf(const HtmlFont& font) const { return Known(font).Font; }

 private:
  struct Entry {
    HtmlFont Key;
    QFont Font;
    QFontMetrics Measures;
  };
  const Entry& Known(const HtmlFont& font) const;
  QFont MakeFont(const HtmlFont& font) const;

  QFont m_base;
  int m_baseHeight;  // of the letters, in pixels
  mutable std::vector<Entry> m_known;
};

}  // namespace tarnwick::controls

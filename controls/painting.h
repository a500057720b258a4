#pragma once

#include <QColor>
#include <QRect>

#include "controls/named_colors.h"
#include "controls/rect.h"

class QPainter;
class QWidget;

namespace tarnwick::controls {

inline QColor ToQt(ColorValue color) {
  return QColor(static_cast<int>(RedOf(color)), static_cast<int>(GreenOf(color)), static_cast<int>(BlueOf(color)));
}
inline ColorValue FromQt(const QColor& color) {
  return MakeColor(static_cast<unsigned>(color.red()), static_cast<unsigned>(color.green()),
                   static_cast<unsigned>(color.blue()));
}
inline QRect ToQt(const Rect& rect) {
  return QRect(rect.Left, rect.Top, rect.Width(), rect.Height());
}
inline Rect FromQt(const QRect& rect) {
  return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

/// The colour of the window face behind `widget`.
ColorValue FaceColor(const QWidget& widget);

/// Draws the style's mark of the keyboard focus round `rect`; as with every control it shows once Tab has been used.
/// Text is drawn over it.
void DrawFocusMark(QPainter& painter, const QWidget& widget, const QRect& rect);

}  // namespace tarnwick::controls

#include "controls/painting.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QWidget>

namespace tarnwick::controls {

ColorValue FaceColor(const QWidget& widget) {
  return FromQt(widget.palette().color(QPalette::Window));
}

void DrawFocusMark(QPainter& painter, const QWidget& widget, const QRect& rect) {
  QStyleOptionFocusRect option;
  option.initFrom(&widget);
  option.rect = rect;
  option.backgroundColor = widget.palette().color(QPalette::Window);
  widget.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, &widget);
}

}  // namespace tarnwick::controls

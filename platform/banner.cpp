#include "platform/banner.h"

#include <QPainter>

#include "platform/bitmap_button.h"

namespace tarnwick::platform {

namespace {

constexpr int DrawingWidth = 1600;  // wider than any dialog that is likely; what stands on it stands at its left
constexpr int Height = 72;
constexpr QRgb RightGround = qRgb(31, 111, 120);  // the drawing's colour at its right edge

}  // namespace

CBanner::CBanner(QWidget* parent) : QWidget(parent), m_drawing(IconOf("banner")) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  setMinimumWidth(200);
}

QSize CBanner::sizeHint() const {
  return {480, Height};
}

void CBanner::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(RightGround));
  m_drawing.paint(&painter, QRect(0, 0, DrawingWidth, height()));
}

}  // namespace tarnwick::platform

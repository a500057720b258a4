#include "pages/picture_view.h"

#include <QPainter>
#include <algorithm>

namespace tarnwick::pages {

namespace {

constexpr int SquareSide = 8;  // pixels of the pattern

void FillWithSquares(QPainter& painter, const QRect& room) {
  painter.fillRect(room, QColor(204, 204, 204));
  for (int y = 0; y < room.height(); y += SquareSide) {
    for (int x = (y / SquareSide % 2) * SquareSide; x < room.width(); x += 2 * SquareSide) {
      painter.fillRect(QRect(room.left() + x, room.top() + y, SquareSide, SquareSide) & room, QColor(153, 153, 153));
    }
  }
}

}  // namespace

CPictureView::CPictureView(QWidget* parent) : QWidget(parent) {}

void CPictureView::ShowPicture(const QImage& picture, const QString& description) {
  m_picture = picture;
  m_text.clear();
  setToolTip(description);
  setAccessibleDescription(description);
  update();
}

void CPictureView::ShowText(const QString& text) {
  m_picture = QImage();
  m_text = text;
  setToolTip(QString());
  setAccessibleDescription(text);
  update();
}

void CPictureView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
  const QRect inner = rect().adjusted(2, 2, -2, -2);
  if (m_picture.isNull()) {
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(inner, Qt::AlignCenter | Qt::TextWordWrap, m_text);
    return;
  }
  QSize size = m_picture.size();
  // A small texture is shown larger, but by whole steps, so that its pixels stay what they are.
  const int steps = std::max(1, std::min(inner.width() / size.width(), inner.height() / size.height()));
  size *= steps;
  if (steps == 1) size.scale(size.boundedTo(inner.size()), Qt::KeepAspectRatio);
  QRect room(QPoint(0, 0), size);
  room.moveCenter(inner.center());
  if (m_picture.hasAlphaChannel()) FillWithSquares(painter, room);
  painter.setRenderHint(QPainter::SmoothPixmapTransform, steps == 1);
  painter.drawImage(room, m_picture);
}

}  // namespace tarnwick::pages

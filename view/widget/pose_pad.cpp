#include "view/widget/pose_pad.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace tarnwick::view {

namespace {

constexpr double KeyStep = 0.05;
constexpr double PointRadius = 5;

}  // namespace

PosePad::PosePad(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName("Two pose parameters");
}

QRectF PosePad::Room() const {
  const double side = std::min(width(), height()) - 2 * PointRadius;
  return QRectF((width() - side) / 2, (height() - side) / 2, side, side);
}

void PosePad::SetPlace(const QPointF& place) {
  m_place = place;
  update();
}

void PosePad::MoveTo(const QPointF& place) {
  SetPlace(QPointF(std::clamp(place.x(), 0.0, 1.0), std::clamp(place.y(), 0.0, 1.0)));
  emit Moved(m_place);
}

void PosePad::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF room = Room();
  painter.setPen(palette().color(hasFocus() ? QPalette::Highlight : QPalette::Mid));
  painter.setBrush(palette().color(QPalette::Base));
  painter.drawRect(room);
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawLine(QPointF(room.center().x(), room.top()), QPointF(room.center().x(), room.bottom()));
  painter.drawLine(QPointF(room.left(), room.center().y()), QPointF(room.right(), room.center().y()));
  painter.setPen(Qt::NoPen);
  painter.setBrush(palette().color(QPalette::Highlight));
  painter.drawEllipse(QPointF(room.left() + m_place.x() * room.width(), room.bottom() - m_place.y() * room.height()),
                      PointRadius, PointRadius);
}

void PosePad::mousePressEvent(QMouseEvent* event) {
  mouseMoveEvent(event);
}

void PosePad::mouseMoveEvent(QMouseEvent* event) {
  const QRectF room = Room();
  MoveTo(QPointF((event->position().x() - room.left()) / room.width(),
                 (room.bottom() - event->position().y()) / room.height()));
}

void PosePad::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
      return MoveTo(m_place - QPointF(KeyStep, 0));
    case Qt::Key_Right:
      return MoveTo(m_place + QPointF(KeyStep, 0));
    case Qt::Key_Up:
      return MoveTo(m_place + QPointF(0, KeyStep));
    case Qt::Key_Down:
      return MoveTo(m_place - QPointF(0, KeyStep));
    default:
      QWidget::keyPressEvent(event);
  }
}

}  // namespace tarnwick::view

#include "view/widget/picture_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace tarnwick::view {

namespace {

constexpr int SquareSide = 8;  // pixels of the pattern
constexpr double SmallestZoom = 1.0 / 64;
constexpr double LargestZoom = 64;
constexpr int WheelNotch = 120;

void FillWithSquares(QPainter& painter, const QRect& room) {
  painter.fillRect(room, QColor(204, 204, 204));
  for (int y = 0; y < room.height(); y += SquareSide) {
    for (int x = (y / SquareSide % 2) * SquareSide; x < room.width(); x += 2 * SquareSide) {
      painter.fillRect(QRect(room.left() + x, room.top() + y, SquareSide, SquareSide) & room, QColor(153, 153, 153));
    }
  }
}

}  // namespace

PictureView::PictureView(QWidget* parent) : QAbstractScrollArea(parent) {
  setFocusPolicy(Qt::StrongFocus);
}

void PictureView::ShowPicture(const QImage& picture, const QString& description) {
  m_picture = picture;
  m_text.clear();
  setToolTip(description);
  setAccessibleDescription(description);
  UpdateBars();
  viewport()->update();
}

void PictureView::ShowText(const QString& text) {
  m_picture = QImage();
  m_text = text;
  setToolTip(QString());
  setAccessibleDescription(text);
  UpdateBars();
  viewport()->update();
}

double PictureView::ShownZoom() const {
  if (m_zoom > 0 || m_picture.isNull()) return m_zoom > 0 ? m_zoom : 1;
  const QSize room = maximumViewportSize() - QSize(2, 2);
  const double fit = std::min(static_cast<double>(room.width()) / m_picture.width(),
                              static_cast<double>(room.height()) / m_picture.height());
  // A small picture is shown larger, but by whole steps, so that its pixels stay what they are.
  return fit >= 1 ? std::floor(fit) : std::max(fit, SmallestZoom);
}

QSize PictureView::ShownSize() const {
  return (QSizeF(m_picture.size()) * ShownZoom()).toSize().expandedTo(QSize(1, 1));
}

void PictureView::SetZoom(double zoom) {
  ZoomAround(zoom, viewport()->rect().center());
}

void PictureView::ZoomAround(double zoom, const QPoint& point) {
  if (zoom > 0) zoom = std::clamp(zoom, SmallestZoom, LargestZoom);
  const bool changed = zoom != m_zoom;
  const double before = ShownZoom();
  const QPointF place(horizontalScrollBar()->value() + point.x(), verticalScrollBar()->value() + point.y());
  m_zoom = zoom;
  UpdateBars();
  const double ratio = ShownZoom() / before;
  horizontalScrollBar()->setValue(static_cast<int>(std::lround(place.x() * ratio - point.x())));
  verticalScrollBar()->setValue(static_cast<int>(std::lround(place.y() * ratio - point.y())));
  viewport()->update();
  if (changed) emit ZoomChanged(zoom);
}

void PictureView::Step(int steps, const QPoint& point) {
  if (!m_picture.isNull()) ZoomAround(ShownZoom() * std::pow(2.0, steps / 2.0), point);
}

void PictureView::UpdateBars() {
  const QSize size = m_picture.isNull() || m_zoom <= 0 ? QSize(0, 0) : ShownSize();
  const QSize room = viewport()->size();
  for (auto [bar, whole, part] : {std::tuple(horizontalScrollBar(), size.width(), room.width()),
                                  std::tuple(verticalScrollBar(), size.height(), room.height())}) {
    bar->setPageStep(part);
    bar->setSingleStep(std::max(part / 10, 1));
    bar->setRange(0, std::max(whole - part, 0));
  }
  viewport()->setCursor(horizontalScrollBar()->maximum() > 0 || verticalScrollBar()->maximum() > 0 ? Qt::OpenHandCursor
                                                                                                   : Qt::ArrowCursor);
}

void PictureView::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  const QRect inner = viewport()->rect();
  painter.fillRect(inner, palette().color(QPalette::Window));
  if (m_picture.isNull()) {
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(inner.adjusted(4, 4, -4, -4), Qt::AlignCenter | Qt::TextWordWrap, m_text);
    return;
  }
  const QSize size = ShownSize();
  QRect room(QPoint(0, 0), size);
  room.moveCenter(inner.center());
  if (size.width() > inner.width()) room.moveLeft(-horizontalScrollBar()->value());
  if (size.height() > inner.height()) room.moveTop(-verticalScrollBar()->value());
  painter.setClipRect(room & inner);
  if (m_picture.hasAlphaChannel()) FillWithSquares(painter, room & inner);
  painter.setRenderHint(QPainter::SmoothPixmapTransform, ShownZoom() < 1);
  painter.drawImage(room, m_picture);
}

void PictureView::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  UpdateBars();
}

void PictureView::wheelEvent(QWheelEvent* event) {
  const int turned = event->angleDelta().y();
  if (turned != 0)
    Step(turned > 0 ? std::max(turned / WheelNotch, 1) : std::min(turned / WheelNotch, -1),
         event->position().toPoint());
  event->accept();
}

void PictureView::keyPressEvent(QKeyEvent* event) {
  const QPoint middle = viewport()->rect().center();
  switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      return Step(1, middle);
    case Qt::Key_Minus:
      return Step(-1, middle);
    case Qt::Key_0:
      return SetZoom(0);
    case Qt::Key_1:
      return SetZoom(1);
    default:
      QAbstractScrollArea::keyPressEvent(event);
  }
}

void PictureView::mousePressEvent(QMouseEvent* event) {
  m_grip = event->pos();
  if (viewport()->cursor().shape() == Qt::OpenHandCursor) viewport()->setCursor(Qt::ClosedHandCursor);
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
  if (!(event->buttons() & (Qt::LeftButton | Qt::MiddleButton))) return;
  const QPoint moved = event->pos() - m_grip;
  m_grip = event->pos();
  horizontalScrollBar()->setValue(horizontalScrollBar()->value() - moved.x());
  verticalScrollBar()->setValue(verticalScrollBar()->value() - moved.y());
}

void PictureView::mouseReleaseEvent(QMouseEvent*) {
  UpdateBars();
}

}  // namespace tarnwick::view

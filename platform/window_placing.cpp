#include "platform/window_placing.h"

#include <QLayout>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

namespace tarnwick::platform {

namespace {

bool FrameIsKnown(const QWidget& window) {
  return window.frameGeometry() != window.geometry();
}

/// What the frame of `window` takes on each side: as it is, or, before the system has made one, about as much as frames
/// do.
QMargins FrameOf(const QWidget& window) {
  const QRect frame = window.frameGeometry();
  const QRect client = window.geometry();
  if (FrameIsKnown(window)) {
    return {client.left() - frame.left(), client.top() - frame.top(), frame.right() - client.right(),
            frame.bottom() - client.bottom()};
  }
  const int title = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
  return {4, title + 4, 4, 4};
}

/// Puts all that stands in `window` into an area that scrolls.
void ScrollContents(QWidget& window) {
  auto* contents = new QWidget;
  contents->setLayout(window.layout());  // takes the controls with it
  auto* area = new QScrollArea(&window);
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  area->setWidget(contents);
  auto* layout = new QVBoxLayout(&window);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(area);
  window.setMinimumSize(0, 0);
}

}  // namespace

void FitOnScreen(QWidget& window) {
  if (window.screen() == nullptr) return;
  const QSize room = window.screen()->availableGeometry().marginsRemoved(FrameOf(window)).size();
  const QSize least = window.minimumSizeHint().expandedTo(window.minimumSize());
  if (window.layout() != nullptr && (least.width() > room.width() || least.height() > room.height())) {
    ScrollContents(window);
  }
  window.resize(window.size().boundedTo(room));
}

QPoint PlaceInRoom(const QRect& client, const QMargins& frame, const QRect& room) {
  const QRect free = room.marginsRemoved(frame);
  return {std::max(free.left(), std::min(client.left(), free.right() + 1 - client.width())),
          std::max(free.top(), std::min(client.top(), free.bottom() + 1 - client.height()))};
}

void KeepOnScreen(QWidget& window) {
  if (window.screen() == nullptr) return;
  const QMargins frame = FrameOf(window);
  const QPoint client = window.geometry().topLeft();
  const QPoint place = PlaceInRoom(window.geometry(), frame, window.screen()->availableGeometry());
  if (place == client) return;
  // A window is moved by its frame; as long as it has none the system takes the point for that of its contents.
  window.move(FrameIsKnown(window) ? place - QPoint(frame.left(), frame.top()) : place);
}

void CenterOver(const QWidget& reference, QWidget& window) {
  const QPoint origin = reference.mapToGlobal(QPoint(0, 0));
  const int centreX = (origin.x() + origin.x() + reference.width()) / 2;
  const int centreY = (origin.y() + origin.y() + reference.height()) / 2;
  FitOnScreen(window);
  window.move(centreX - window.width() / 2, centreY - window.height() / 2);
  KeepOnScreen(window);
  window.raise();
}

}  // namespace tarnwick::platform

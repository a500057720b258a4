#include "platform/window_placing.h"

#include <QLayout>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

namespace tarnwick::platform {

namespace {

/// What the frame of `window` takes: as it is, or, before the system has made one, about as much as frames do.
QSize FrameSize(const QWidget& window) {
  const QSize frame = window.frameGeometry().size() - window.geometry().size();
  if (frame.height() > 0) return frame;
  const int title = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
  return {8, title + 8};
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
  const QSize room = window.screen()->availableGeometry().size() - FrameSize(window);
  const QSize least = window.minimumSizeHint().expandedTo(window.minimumSize());
  if (window.layout() != nullptr && (least.width() > room.width() || least.height() > room.height())) {
    ScrollContents(window);
  }
  window.resize(window.size().boundedTo(room));
}

void KeepOnScreen(QWidget& window) {
  if (window.screen() == nullptr) return;
  const QRect room = window.screen()->availableGeometry();
  const QSize size = window.geometry().size() + FrameSize(window);
  const QPoint place = window.pos();  // of the frame
  const int left = std::max(room.left(), std::min(place.x(), room.right() + 1 - size.width()));
  const int top = std::max(room.top(), std::min(place.y(), room.bottom() + 1 - size.height()));
  if (QPoint(left, top) != place) window.move(left, top);
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

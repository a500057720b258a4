#include "platform/window_placing.h"

#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace tarnwick::platform {

void CenterOver(const QWidget& reference, QWidget& window) {
  const QPoint origin = reference.mapToGlobal(QPoint(0, 0));
  const int centreX = (origin.x() + origin.x() + reference.width()) / 2;
  const int centreY = (origin.y() + origin.y() + reference.height()) / 2;
  int left = centreX - window.width() / 2;
  int top = centreY - window.height() / 2;
  if (const QScreen* screen = reference.screen()) {
    const QRect room = screen->availableGeometry();
    left = std::max(room.left(), std::min(left, room.right() + 1 - window.width()));
    top = std::max(room.top(), std::min(top, room.bottom() + 1 - window.height()));
  }
  window.move(left, top);
  window.raise();
}

}  // namespace tarnwick::platform

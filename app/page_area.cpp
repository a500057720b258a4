#include "app/page_area.h"

#include <QEvent>
#include <QScreen>
#include <QScrollBar>
#include <algorithm>

namespace tarnwick::app {

namespace {

constexpr int AroundTheTabs = 60;  // pixels that frame, margins and tabs of the window take beside a page, at most

}  // namespace

CPageArea::CPageArea(QWidget& page, QWidget* parent) : QScrollArea(parent) {
  setFrameShape(NoFrame);
  setFocusPolicy(Qt::NoFocus);  // a click beside the controls would take the focus out of sight
  setWidgetResizable(true);
  setWidget(&page);  // which also has its events come by
}

QSize CPageArea::minimumSizeHint() const {
  const QSize least = QScrollArea::minimumSizeHint();
  const int wanted = widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width();
  const int room = screen()->availableGeometry().width() - AroundTheTabs;
  return {std::max(least.width(), std::min(wanted, room)), least.height()};
}

bool CPageArea::eventFilter(QObject* watched, QEvent* event) {
  if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
  return QScrollArea::eventFilter(watched, event);
}

}  // namespace tarnwick::app

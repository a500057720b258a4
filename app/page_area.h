#pragma once

#include <QScrollArea>

namespace tarnwick::app {

/// What a page of a tab stands in: as wide as the page needs it, also beside a scroll bar, so that a page which is
/// taller than a small screen is scrolled down, and never sideways while the screen is wide enough.
class CPageArea : public QScrollArea {
  Q_OBJECT

 public:
  CPageArea(QWidget& page, QWidget* parent);

  QSize minimumSizeHint() const override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace tarnwick::app

#pragma once

#include <QIcon>
#include <QWidget>

namespace tarnwick::platform {

/// The program's picture across the top of a dialog, drawn sharp at any scale. A narrow dialog shows its left part.
class CBanner : public QWidget {
  Q_OBJECT

 public:
  explicit CBanner(QWidget* parent = nullptr);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QIcon m_drawing;
};

}  // namespace tarnwick::platform

#pragma once

#include <QCheckBox>

namespace tarnwick::platform {

/// A check box whose text is broken between its words where the box is too narrow for it. The text itself stays whole.
class CWrappedCheckBox : public QCheckBox {
  Q_OBJECT

 public:
  explicit CWrappedCheckBox(QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool hitButton(const QPoint& point) const override;

 private:
  /// Where the text stands in a box of that width, and how much room it needs.
  QRect TextRect(int width) const;
  QSize IndicatorSize() const;
};

}  // namespace tarnwick::platform

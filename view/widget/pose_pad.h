#pragma once

#include <QWidget>

namespace tarnwick::view {

/// Two values at once: a square in which a point is dragged, or moved with the arrows. Both run from 0 to 1, the second
/// one upward.
class PosePad : public QWidget {
  Q_OBJECT

 public:
  explicit PosePad(QWidget* parent = nullptr);

  void SetPlace(const QPointF& place);
  QPointF Place() const { return m_place; }

  QSize sizeHint() const override { return {110, 110}; }
  QSize minimumSizeHint() const override { return {70, 70}; }

 signals:
  /// The user has moved the point.
  void Moved(const QPointF& place);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QRectF Room() const;
  void MoveTo(const QPointF& place);

  QPointF m_place;
};

}  // namespace tarnwick::view

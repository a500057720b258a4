#pragma once

#include <QAbstractScrollArea>
#include <QImage>

namespace tarnwick::view {

/// Shows a picture, transparent parts over a pattern of squares; without a picture a text. It is as large as it fits, a
/// small one by whole steps, or as large as SetZoom says and then moved by dragging. The wheel and + and - zoom, 0 fits
/// it, 1 shows it pixel by pixel, the arrows move it.
class PictureView : public QAbstractScrollArea {
  Q_OBJECT

 public:
  explicit PictureView(QWidget* parent = nullptr);

  void ShowPicture(const QImage& picture, const QString& description);
  /// Takes the picture away and shows `text` in its place.
  void ShowText(const QString& text);
  const QImage& Picture() const { return m_picture; }

  /// Screen points for each pixel of the picture; 0: as large as it fits.
  void SetZoom(double zoom);
  double Zoom() const { return m_zoom; }

  QSize sizeHint() const override { return {160, 160}; }
  QSize minimumSizeHint() const override { return {128, 128}; }

 signals:
  void ZoomChanged(double zoom);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  double ShownZoom() const;
  QSize ShownSize() const;
  void ZoomAround(double zoom, const QPoint& point);
  void Step(int steps, const QPoint& point);
  void UpdateBars();

  QImage m_picture;
  QString m_text;
  double m_zoom = 0;
  QPoint m_grip;  // where the pointer holds the picture
};

}  // namespace tarnwick::view

#pragma once

#include <QImage>
#include <QWidget>

namespace tarnwick::pages {

/// Shows a picture as large as it fits, transparent parts over a pattern of squares; without a picture a text.
class CPictureView : public QWidget {
  Q_OBJECT

 public:
  explicit CPictureView(QWidget* parent = nullptr);

  void ShowPicture(const QImage& picture, const QString& description);
  /// Takes the picture away and shows `text` in its place.
  void ShowText(const QString& text);
  const QImage& Picture() const { return m_picture; }

  QSize sizeHint() const override { return {256, 256}; }
  QSize minimumSizeHint() const override { return {128, 128}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QImage m_picture;
  QString m_text;
};

}  // namespace tarnwick::pages

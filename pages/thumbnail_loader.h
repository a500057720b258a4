#pragma once

#include <QImage>
#include <QObject>
#include <QThreadPool>

#include "images/image_worker.h"
#include "images/preview.h"

namespace tarnwick::pages {

/// A small picture as Qt draws it.
QImage ToQtImage(const images::PreviewImage& picture);

/// Loads small pictures of image files beside the window, a few at a time.
class ThumbnailLoader : public QObject {
  Q_OBJECT

 public:
  static constexpr int Side = 64;  // pixels of the square that a picture fits

  explicit ThumbnailLoader(QObject* parent = nullptr);
  /// What waits is dropped; what runs is waited for.
  ~ThumbnailLoader() override;

  /// Has the picture of the file at `path` loaded; Loaded tells when it is there. A file that is no image gives none.
  void Load(const QString& path);

 signals:
  void Loaded(const QString& path, const QImage& picture);

 private:
  images::ImageWorker m_worker;
  QThreadPool m_pool;
};

}  // namespace tarnwick::pages

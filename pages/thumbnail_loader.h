#pragma once

#include <QImage>
#include <QObject>
#include <QThreadPool>
#include <stop_token>

#include "images/image_worker.h"
#include "images/preview.h"

namespace tarnwick::pages {

/// A small picture as Qt draws it.
QImage ToQtImage(const images::PreviewImage& picture);

/// Loads small pictures of image files beside the window, a few at a time, each in a process of its own.
class ThumbnailLoader : public QObject {
  Q_OBJECT

 public:
  static constexpr int Side = 64;  // pixels of the square that a picture in a list fits

  explicit ThumbnailLoader(QObject* parent = nullptr, int side = Side);
  /// What waits is dropped; what runs is ended.
  ~ThumbnailLoader() override;

  /// Has the picture of the file at `path` loaded; Loaded tells when it is there, Failed why there will be none.
  void Load(const QString& path);
  /// Reads no format but the common ones from here on.
  void ReadFamiliarOnly(bool only) { m_worker.ReadFamiliarOnly(only); }

 signals:
  void Loaded(const QString& path, const QImage& picture);
  void Failed(const QString& path, const QString& reason);

 private:
  const int m_side;
  std::stop_source m_stop;
  images::ImageWorker m_worker;
  QThreadPool m_pool;
};

}  // namespace tarnwick::pages

#pragma once

#include <QCache>
#include <QImage>
#include <QObject>
#include <QPixmap>
#include <QThreadPool>
#include <deque>
#include <memory>
#include <mutex>
#include <stop_token>

#include "archives/content_index.h"

namespace tarnwick::pages {

/// Small pictures of textures, made beside the window and kept: those asked for last come first, and what has long been
/// scrolled away is not made.
class ContentPictures : public QObject {
  Q_OBJECT

 public:
  explicit ContentPictures(QObject* parent = nullptr);
  ~ContentPictures() override;

  /// The files whose pictures are asked for, by number; `side` is the square that a picture fits, in pixels. Forgets
  /// all pictures.
  void Show(std::shared_ptr<const archives::ContentIndex> index, int side);

  /// The picture of a file, if it is there. Otherwise null; then it is made if the file has one, and Changed tells.
  const QPixmap* Picture(uint32_t file);

 signals:
  void Changed(uint32_t file);

 private:
  struct Work;
  void Enter(uint32_t file, const QImage& picture, const std::shared_ptr<Work>& work);

  QCache<uint32_t, QPixmap> m_pictures;  // a null picture for what has none
  std::shared_ptr<Work> m_work;          // of the present index
  QThreadPool m_pool;
};

/// The picture of a texture file, its proportions kept, in a square of `side` pixels. Null, with `reason`, if it cannot
/// be decoded.
QImage TexturePicture(core::ImageView file, int side, std::string& reason);

}  // namespace tarnwick::pages

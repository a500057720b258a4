#pragma once

#include <QCache>
#include <QImage>
#include <QObject>
#include <QPixmap>
#include <QThreadPool>
#include <memory>
#include <string>
#include <vector>

#include "archives/content_index.h"
#include "pages/content_thumbnails.h"

namespace tarnwick::pages {

/// Small pictures of textures, materials and models, made beside the window and kept: up to 32 MB in memory, those that
/// were not looked at for the longest go first. Only what is wanted at the moment is made, in that order.
class ContentPictures : public QObject {
  Q_OBJECT

 public:
  explicit ContentPictures(QObject* parent = nullptr);
  ~ContentPictures() override;

  /// The files whose pictures are asked for, by number; `side` is the square that a picture fits, in pixels. What a
  /// model or a material lacks is looked for in the game of `gameDirectory`. Pictures of files in archives are kept
  /// from one index to the next.
  void Show(std::shared_ptr<const archives::ContentIndex> index, const std::string& gameDirectory, int side);
  /// Forgets all pictures: what they show may have changed.
  void Forget();

  /// The files that are seen, from the top: their pictures are made, and no others are begun any more.
  void Want(const std::vector<uint32_t>& files);
  /// The picture of a file; null if it has none or it is still to come, which Changed tells.
  const QPixmap* Picture(uint32_t file) const;

 signals:
  void Changed(uint32_t file);

 private:
  struct Work;
  QString KeyOf(uint32_t file) const;
  void Start(QThreadPool& pool, bool models);
  void Enter(uint32_t file, const QImage& picture, const std::shared_ptr<Work>& work);

  QCache<QString, QPixmap> m_pictures;  // a null picture for what has none
  std::shared_ptr<Work> m_work;         // of the present index
  ModelThumbnails m_models;
  QThreadPool m_pool;
  QThreadPool m_modelPool;
};

}  // namespace tarnwick::pages

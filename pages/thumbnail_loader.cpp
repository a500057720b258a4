#include "pages/thumbnail_loader.h"

#include "platform/text.h"

namespace tarnwick::pages {

namespace {

constexpr int LoadsAtATime = 2;

}  // namespace

QImage ToQtImage(const images::PreviewImage& picture) {
  return QImage(picture.Pixels.data(), picture.Width, picture.Height, picture.Width * 4, QImage::Format_RGBA8888)
      .copy();
}

ThumbnailLoader::ThumbnailLoader(QObject* parent, int side) : QObject(parent), m_side(side) {
  m_worker.StopWith(m_stop.get_token());
  m_pool.setMaxThreadCount(LoadsAtATime);
}

ThumbnailLoader::~ThumbnailLoader() {
  m_pool.clear();
  m_stop.request_stop();
  m_pool.waitForDone();
}

void ThumbnailLoader::Load(const QString& path) {
  m_pool.start([this, path, worker = m_worker] {
    std::string reason;
    const auto picture = images::LoadPreview(platform::FromQt(path), m_side, worker, &reason);
    if (picture) {
      emit Loaded(path, ToQtImage(*picture));
    } else {
      emit Failed(path, platform::ToQt(reason));
    }
  });
}

}  // namespace tarnwick::pages

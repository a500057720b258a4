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

ThumbnailLoader::ThumbnailLoader(QObject* parent) : QObject(parent) {
  m_pool.setMaxThreadCount(LoadsAtATime);
}

ThumbnailLoader::~ThumbnailLoader() {
  m_pool.clear();
  m_pool.waitForDone();
}

void ThumbnailLoader::Load(const QString& path) {
  m_pool.start([this, path] {
    const auto picture = images::LoadPreview(platform::FromQt(path), Side, m_worker);
    if (picture) emit Loaded(path, ToQtImage(*picture));
  });
}

}  // namespace tarnwick::pages

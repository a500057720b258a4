#include "pages/content_pictures.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "textures/pixel_rows.h"
#include "textures/vtf_file.h"

namespace tarnwick::pages {

namespace {

constexpr int KeptPictures = 2000;   // of 64 by 64 pixels: 32 MB
constexpr size_t MostWaiting = 200;  // about two screens full
constexpr int PicturesAtATime = 2;
constexpr uint64_t LargestFile = 64u << 20;    // of a texture that is read for a small picture
constexpr int64_t LargestImage = 2048 * 2048;  // pixels that are decoded for it

}  // namespace

struct ContentPictures::Work {
  Work(std::shared_ptr<const archives::ContentIndex> index, int side) : Index(std::move(index)), Side(side) {}

  const std::shared_ptr<const archives::ContentIndex> Index;
  const int Side;
  std::stop_source Stop = {};
  std::mutex Lock = {};
  std::deque<uint32_t> Waiting = {};  // the newest last

  std::optional<uint32_t> TakeNewest() {
    const std::lock_guard lock(Lock);
    if (Waiting.empty()) return std::nullopt;
    const uint32_t file = Waiting.back();
    Waiting.pop_back();
    return file;
  }

  QImage Make(uint32_t file) const {
    if (Index->Size(file) > LargestFile) return {};
    try {
      std::string reason;
      const auto image = Index->Read(file, reason);
      return image ? TexturePicture(image->View(), Side, reason) : QImage();
    } catch (const std::exception&) {  // memory ran out: no picture
      return {};
    }
  }
};

QImage TexturePicture(core::ImageView file, int side, std::string& reason) {
  const auto vtf = textures::VtfFile::Open(file, reason);
  if (!vtf) return {};
  const textures::VtfInfo& info = vtf->Info();
  // The smallest level that is not smaller than the picture.
  int mip = 0;
  while (mip + 1 < info.MipLevels &&
         std::max(textures::MipSize(info.Width, mip + 1), textures::MipSize(info.Height, mip + 1)) >= side) {
    ++mip;
  }
  const textures::StoredImage image{info.Format, textures::MipSize(info.Width, mip),
                                    textures::MipSize(info.Height, mip), vtf->Image({.Mip = mip})};
  if (int64_t{image.Width} * image.Height > LargestImage) {
    reason = "it has no small level";
    return {};
  }
  const textures::PixelLayout layout = textures::LayoutFor(image);
  QImage picture(image.Width, image.Height,
                 layout == textures::PixelLayout::Bgra32 ? QImage::Format_ARGB32 : QImage::Format_BGR888);
  if (picture.isNull()) return {};
  textures::DecodeRows(image, 0, image.Height, layout, picture.bits(), picture.bytesPerLine());
  if (layout == textures::PixelLayout::Bgr24) picture = std::move(picture).convertToFormat(QImage::Format_RGB32);
  if (std::max(picture.width(), picture.height()) <= side) return picture;
  return picture.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

ContentPictures::ContentPictures(QObject* parent) : QObject(parent), m_pictures(KeptPictures) {
  m_pool.setMaxThreadCount(PicturesAtATime);
}

ContentPictures::~ContentPictures() {
  if (m_work) m_work->Stop.request_stop();
  m_pool.clear();
  m_pool.waitForDone();
}

void ContentPictures::Show(std::shared_ptr<const archives::ContentIndex> index, int side) {
  if (m_work) m_work->Stop.request_stop();
  m_pool.clear();
  m_pictures.clear();
  m_work = index != nullptr ? std::make_shared<Work>(std::move(index), side) : nullptr;
}

const QPixmap* ContentPictures::Picture(uint32_t file) {
  if (const QPixmap* known = m_pictures.object(file); known != nullptr) return known->isNull() ? nullptr : known;
  if (!m_work || m_work->Index->Kind(file) != archives::ContentKind::Texture) return nullptr;
  {
    const std::lock_guard lock(m_work->Lock);
    auto& waiting = m_work->Waiting;
    const auto found = std::find(waiting.begin(), waiting.end(), file);
    if (found != waiting.end()) {
      waiting.erase(found);
      waiting.push_back(file);
      return nullptr;
    }
    waiting.push_back(file);
    if (waiting.size() > MostWaiting) waiting.pop_front();
  }
  m_pool.start([this, work = m_work] {
    if (work->Stop.stop_requested()) return;
    const auto next = work->TakeNewest();
    if (!next) return;
    const QImage picture = work->Make(*next);
    if (work->Stop.stop_requested()) return;
    QMetaObject::invokeMethod(
        this, [this, work, file = *next, picture] { Enter(file, picture, work); }, Qt::QueuedConnection);
  });
  return nullptr;
}

void ContentPictures::Enter(uint32_t file, const QImage& picture, const std::shared_ptr<Work>& work) {
  if (work != m_work) return;
  m_pictures.insert(file, new QPixmap(QPixmap::fromImage(picture)));
  if (!picture.isNull()) emit Changed(file);
}

}  // namespace tarnwick::pages

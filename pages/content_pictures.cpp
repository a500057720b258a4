#include "pages/content_pictures.h"

#include <algorithm>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <stop_token>

#include "platform/text.h"

namespace tarnwick::pages {

using archives::ContentKind;

namespace {

constexpr int KeptKilobytes = 32 << 10;
constexpr int PicturesAtATime = 2;
constexpr uint64_t LargestModel = 64u << 20;  // bytes of a model that is drawn small

int KilobytesOf(const QPixmap& picture) {
  return 1 + picture.width() * picture.height() / 256;  // of four bytes a pixel
}

}  // namespace

/// What is to be made of one index, shared with the threads that make it.
struct ContentPictures::Work {
  Work(std::shared_ptr<const archives::ContentIndex> index, std::string gameDirectory, int side)
      : Index(std::move(index)), GameDirectory(std::move(gameDirectory)), Side(side), Textures(Index, GameDirectory) {}

  const std::shared_ptr<const archives::ContentIndex> Index;
  const std::string GameDirectory;
  const int Side;
  const TextureThumbnails Textures;
  std::stop_source Stop = {};
  std::mutex Lock = {};
  std::deque<uint32_t> Waiting[2] = {};  // textures and materials; models
  std::vector<uint32_t> Begun = {};

  std::optional<uint32_t> TakeNext(bool models) {
    const std::lock_guard lock(Lock);
    auto& waiting = Waiting[models];
    if (waiting.empty()) return std::nullopt;
    const uint32_t file = waiting.front();
    waiting.pop_front();
    Begun.push_back(file);
    return file;
  }

  QImage Make(uint32_t file, ModelThumbnails& models) const {
    try {
      if (Index->Kind(file) != ContentKind::Model) return Textures.Of(file, Side);
      if (Index->Size(file) > LargestModel) return {};
      return models.Of(Index->FullName(file), GameDirectory, Side);
    } catch (const std::exception&) {  // memory ran out: no picture
      return {};
    }
  }
};

ContentPictures::ContentPictures(QObject* parent) : QObject(parent), m_pictures(KeptKilobytes) {
  m_pool.setMaxThreadCount(PicturesAtATime);
  m_modelPool.setMaxThreadCount(1);  // the renderer draws with several by itself
}

ContentPictures::~ContentPictures() {
  if (m_work) m_work->Stop.request_stop();
  for (QThreadPool* pool : {&m_pool, &m_modelPool}) {
    pool->clear();
    pool->waitForDone();
  }
}

void ContentPictures::Show(std::shared_ptr<const archives::ContentIndex> index, const std::string& gameDirectory,
                           int side) {
  if (m_work) m_work->Stop.request_stop();
  if (m_work && m_work->Side != side) m_pictures.clear();
  m_pool.clear();
  m_modelPool.clear();
  m_work = index != nullptr ? std::make_shared<Work>(std::move(index), gameDirectory, side) : nullptr;
}

void ContentPictures::Forget() {
  m_pictures.clear();
}

/// By what a picture is kept: a file of an archive is known by its CRC too.
QString ContentPictures::KeyOf(uint32_t file) const {
  const archives::ContentIndex& index = *m_work->Index;
  const auto& archive = index.Places()[index.PlaceOf(file)].InArchive;
  const QString name = platform::ToQt(index.FullName(file));
  return archive == nullptr ? name
                            : name + '|' + QString::number(archive->Files().Place(index.NumberInPlace(file)).Crc);
}

const QPixmap* ContentPictures::Picture(uint32_t file) const {
  if (!m_work || m_work->Index->Kind(file) == ContentKind::Other) return nullptr;
  const QPixmap* known = m_pictures.object(KeyOf(file));
  return known == nullptr || known->isNull() ? nullptr : known;
}

void ContentPictures::Want(const std::vector<uint32_t>& files) {
  if (!m_work) return;
  const std::lock_guard lock(m_work->Lock);
  for (const bool models : {false, true}) {
    auto& waiting = m_work->Waiting[models];
    waiting.clear();
    for (const uint32_t file : files) {
      const ContentKind kind = m_work->Index->Kind(file);
      if (kind == ContentKind::Other || (kind == ContentKind::Model) != models) continue;
      const auto& begun = m_work->Begun;
      if (std::find(begun.begin(), begun.end(), file) != begun.end() || m_pictures.contains(KeyOf(file))) continue;
      waiting.push_back(file);
    }
    if (models && !m_models.CanDraw()) waiting.clear();
    QThreadPool& pool = models ? m_modelPool : m_pool;
    pool.clear();
    for (size_t i = 0; i < waiting.size(); ++i) Start(pool, models);
  }
}

void ContentPictures::Start(QThreadPool& pool, bool models) {
  pool.start([this, models, work = m_work] {
    if (work->Stop.stop_requested()) return;
    const auto next = work->TakeNext(models);
    if (!next) return;
    const QImage picture = work->Make(*next, m_models);
    if (work->Stop.stop_requested()) return;
    QMetaObject::invokeMethod(
        this, [this, work, file = *next, picture] { Enter(file, picture, work); }, Qt::QueuedConnection);
  });
}

void ContentPictures::Enter(uint32_t file, const QImage& picture, const std::shared_ptr<Work>& work) {
  if (work != m_work) return;
  {
    const std::lock_guard lock(work->Lock);
    std::erase(work->Begun, file);
  }
  auto* kept = new QPixmap(QPixmap::fromImage(picture));
  m_pictures.insert(KeyOf(file), kept, KilobytesOf(*kept));
  if (!picture.isNull()) emit Changed(file);
}

}  // namespace tarnwick::pages

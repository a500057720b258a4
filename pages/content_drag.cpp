#include "pages/content_drag.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QDrag>
#include <QEventLoop>
#include <QMimeData>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <atomic>
#include <numeric>
#include <thread>

#include "archives/content_extraction.h"
#include "platform/dropped_files.h"
#include "platform/text.h"

namespace tarnwick::pages {

using platform::FromQt;
using platform::ToQt;

namespace {

constexpr uint64_t MostBytes = uint64_t{512} << 20;
constexpr size_t MostFiles = 2000;
constexpr size_t KeptFolders = 8;  // the program that the files were dropped on may still be reading the last ones
constexpr char FolderName[] = "tarnwick-drag-XXXXXX";
constexpr int DaysOfLeftovers = 2;

class FirstTrouble : public core::TroubleSink {
 public:
  void Tell(const core::Trouble& trouble) override {
    if (Text.empty()) Text = trouble.Text;
  }
  std::string Text;
};

/// Removes what a program left behind that could not clean up when it ended.
void RemoveLeftovers() {
  const QStringList pattern(QString(FolderName).replace("XXXXXX", "??????"));
  for (const QFileInfo& folder : QDir(QDir::tempPath()).entryInfoList(pattern, QDir::Dirs | QDir::NoSymLinks)) {
    const bool old = folder.lastModified().daysTo(QDateTime::currentDateTime()) > DaysOfLeftovers;
    if (old) QDir(folder.filePath()).removeRecursively();
  }
}

}  // namespace

std::vector<std::string> ContentDrags::Write(const archives::ContentIndex& index, const std::vector<uint32_t>& files,
                                             const std::stop_token& stop, std::string& reason) {
  if (m_folders.empty()) RemoveLeftovers();
  auto folder = std::make_unique<QTemporaryDir>(QDir::tempPath() + '/' + FolderName);
  if (!folder->isValid()) {
    reason = FromQt(folder->errorString());
    return {};
  }
  FirstTrouble trouble;
  const archives::Extraction done = archives::ExtractContent(index, files, FromQt(folder->path()), trouble, stop, {});
  reason = trouble.Text;
  std::vector<std::string> paths;
  for (const archives::ExtractedFile& file : done.Files) paths.push_back(file.Path);
  m_folders.push_back(std::move(folder));
  if (m_folders.size() > KeptFolders) m_folders.pop_front();
  if (done.Stopped) paths.clear();
  return paths;
}

std::unique_ptr<QMimeData> DragData(const std::vector<std::string>& names, const std::vector<std::string>& paths) {
  auto dragged = std::make_unique<QMimeData>();
  QList<QUrl> urls;
  for (const std::string& path : paths) urls << QUrl::fromLocalFile(ToQt(path));
  dragged->setUrls(urls);
  platform::PutNames(*dragged, names);
  return dragged;
}

QString ContentDrags::Drag(QWidget& source, const archives::ContentIndex& index, const std::vector<uint32_t>& files,
                           const std::vector<std::string>& names) {
  if (m_dragging) return {};
  const uint64_t bytes = std::accumulate(files.begin(), files.end(), uint64_t{0},
                                         [&](uint64_t sum, uint32_t file) { return sum + index.Size(file); });
  if (files.size() > MostFiles || bytes > MostBytes) return "That is too much to be dragged: extract it.";
  // The files are written first, beside the window, while the user holds the button.
  m_dragging = true;
  std::vector<std::string> paths;
  std::string reason;
  std::atomic<bool> ended = false;
  std::jthread writer([&](const std::stop_token& stop) {
    paths = Write(index, files, stop, reason);
    ended = true;
  });
  QEventLoop loop;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
    if (QApplication::mouseButtons() == Qt::NoButton) writer.request_stop();  // let go too early
    if (ended) loop.quit();
  });
  timer.start(10);
  loop.exec(QEventLoop::ExcludeSocketNotifiers);
  writer.join();
  if (!paths.empty() && QApplication::mouseButtons() != Qt::NoButton) {
    auto* drag = new QDrag(&source);
    drag->setMimeData(DragData(names, paths).release());
    drag->exec(Qt::CopyAction);
  }
  m_dragging = false;
  return ToQt(reason);
}

}  // namespace tarnwick::pages

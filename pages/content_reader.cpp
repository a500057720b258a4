#include "pages/content_reader.h"

#include <exception>

#include "archives/archive_name.h"
#include "core/paths.h"

namespace tarnwick::pages {

struct ContentReader::Result {
  std::shared_ptr<const archives::ContentIndex> Index = {};
  std::string Reason = {};
  std::vector<std::string> Notes = {};
  Stamps Files = {};

  void Stamp(const std::string& path) { Files.emplace_back(path, archives::StampOf(core::NativePath(path))); }
};

namespace {

class NoteSink : public core::TroubleSink {
 public:
  explicit NoteSink(std::vector<std::string>& notes) : m_notes(notes) {}
  void Tell(const core::Trouble& trouble) override { m_notes.push_back(trouble.Text); }

 private:
  std::vector<std::string>& m_notes;
};

}  // namespace

ContentReader::ContentReader(QObject* parent) : QObject(parent) {
  m_pool.setMaxThreadCount(1);  // what was wished before has been told to stop
}

ContentReader::~ContentReader() {
  m_openStop.request_stop();
  m_searchStop.request_stop();
  m_pool.clear();
  m_pool.waitForDone();
}

ContentReader::Result ContentReader::Read(const ContentSource& source, const std::stop_token& stop) {
  Result result;
  std::vector<archives::GamePlace> places;
  if (source.Archives.empty()) {
    NoteSink sink(result.Notes);
    const std::string info = source.GameDirectory + core::PathSeparator + "gameinfo.txt";
    result.Stamp(core::FindIgnoringCase(info).value_or(info));
    const auto game = archives::GameFiles::Open(source.GameDirectory, sink, result.Reason);
    if (game == nullptr) return result;
    places = game->AllPlaces();
    for (const archives::GamePlace& place : places) {
      if (place.InArchive != nullptr) result.Stamp(place.Path);
    }
  }
  for (const std::string& named : source.Archives) {
    const std::string path = archives::DirectoryFileOf(named);
    std::string reason;
    result.Stamp(path);
    auto archive = archives::Archive::Open(path, reason);
    if (archive != nullptr) {
      places.push_back({path, std::move(archive)});
    } else {
      result.Notes.push_back(std::string(path).append(": ").append(reason));
    }
  }
  if (places.empty()) {
    result.Reason = result.Notes.empty() ? "none of the game's search paths is there" : result.Notes.front();
    return result;
  }
  result.Index = archives::ContentIndex::Of(std::move(places), stop);
  return result;
}

void ContentReader::Open(const ContentSource& source) {
  m_openStop.request_stop();
  m_searchStop.request_stop();
  m_openStop = {};
  m_opening = true;
  m_searching = false;
  m_index = nullptr;
  m_reason.clear();
  m_notes.clear();
  m_stamps.clear();
  m_lastLook.clear();
  m_pool.start([this, source, stop = m_openStop.get_token()] {
    Result result;
    try {
      result = Read(source, stop);
    } catch (const std::exception& error) {  // memory ran out, at the latest
      result = {.Reason = error.what()};
    }
    QMetaObject::invokeMethod(
        this,
        [this, result, stop] {
          if (stop.stop_requested()) return;
          m_opening = false;
          m_index = result.Index;
          m_reason = result.Reason;
          m_notes = result.Notes;
          m_stamps = result.Files;
          emit Opened();
        },
        Qt::QueuedConnection);
  });
}

void ContentReader::LookForChanges() {
  if (m_opening || m_looking || m_stamps.empty()) return;
  m_looking = true;
  m_pool.start([this, known = m_stamps, stop = m_openStop.get_token()] {
    Stamps now = known;
    for (auto& [path, stamp] : now) stamp = archives::StampOf(core::NativePath(path));
    QMetaObject::invokeMethod(
        this,
        [this, known, now, stop] {
          m_looking = false;
          if (stop.stop_requested()) return;
          const bool settled = now != known && now == m_lastLook;
          m_lastLook = now;
          if (settled) emit Changed();
        },
        Qt::QueuedConnection);
  });
}

void ContentReader::Search(const archives::ContentQuery& query) {
  if (m_index == nullptr) return;
  m_searchStop.request_stop();
  m_searchStop = {};
  m_searching = true;
  m_pool.start([this, query, index = m_index, stop = m_searchStop.get_token()] {
    auto files = index->Search(query, stop);
    if (!files) return;
    QMetaObject::invokeMethod(
        this,
        [this, found = std::move(*files), stop] {
          if (stop.stop_requested()) return;
          m_searching = false;
          emit Found(found);
        },
        Qt::QueuedConnection);
  });
}

}  // namespace tarnwick::pages

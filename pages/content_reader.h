#pragma once

#include <QObject>
#include <QThreadPool>
#include <memory>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "archives/content_index.h"
#include "archives/file_stamp.h"

namespace tarnwick::pages {

/// Where the files of the content window come from.
struct ContentSource {
  std::string GameDirectory = {};          // all places that its gameinfo.txt tells
  std::vector<std::string> Archives = {};  // where there are any, these alone

  bool operator==(const ContentSource&) const = default;
};

/// Reads the files of a source and searches them, beside the window. A new wish ends the one before.
class ContentReader : public QObject {
  Q_OBJECT

 public:
  explicit ContentReader(QObject* parent = nullptr);
  ~ContentReader() override;

  /// Reads the source; Opened tells when its index is there or why not.
  void Open(const ContentSource& source);
  /// Looks whether archives of the source, or the game's gameinfo.txt, are other files than those that were read, and
  /// are no more being written: they are the same as at the last look. Changed tells.
  void LookForChanges();
  /// Searches the index; Found tells the files. Does nothing without an index.
  void Search(const archives::ContentQuery& query);

  bool IsOpening() const { return m_opening; }
  bool IsSearching() const { return m_searching; }
  /// The files; null while they are read, and where they cannot be.
  const std::shared_ptr<const archives::ContentIndex>& Index() const { return m_index; }
  /// Why there is no index.
  const std::string& Reason() const { return m_reason; }
  /// What is wrong with single places, which are then left out.
  const std::vector<std::string>& Notes() const { return m_notes; }

 signals:
  void Opened();
  void Changed();
  void Found(const std::vector<uint32_t>& files);

 private:
  using Stamps = std::vector<std::pair<std::string, archives::FileStamp>>;  // by path
  struct Result;
  static Result Read(const ContentSource& source, const std::stop_token& stop);

  std::shared_ptr<const archives::ContentIndex> m_index;
  std::string m_reason;
  std::vector<std::string> m_notes;
  Stamps m_stamps;    // of the files that were read
  Stamps m_lastLook;  // where they differ from those
  bool m_looking = false;
  std::stop_source m_openStop;
  std::stop_source m_searchStop;
  bool m_opening = false;
  bool m_searching = false;
  QThreadPool m_pool;
};

}  // namespace tarnwick::pages

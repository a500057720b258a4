#pragma once

#include <QString>
#include <QTemporaryDir>
#include <deque>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "archives/content_index.h"

class QMimeData;
class QWidget;

namespace tarnwick::pages {

/// Drags files out of the content window. They are written to a folder for temporary files, each drag to one of its
/// own, where they stay while another program may be reading them: until some more drags, or the end of this object.
class ContentDrags {
 public:
  /// The files that the user drags from `source`, `names` for the fields of this program. Returns when the button is
  /// let go. What went wrong, for people; "" for nothing.
  QString Drag(QWidget& source, const archives::ContentIndex& index, const std::vector<uint32_t>& files,
               const std::vector<std::string>& names);

  /// Writes files to a new folder and gives their paths; those that cannot be written are told in `reason`. Any thread
  /// may call it, one at a time.
  std::vector<std::string> Write(const archives::ContentIndex& index, const std::vector<uint32_t>& files,
                                 const std::stop_token& stop, std::string& reason);

 private:
  bool m_dragging = false;
  std::deque<std::unique_ptr<QTemporaryDir>> m_folders;  // the newest last
};

/// What is dragged: paths for other programs, names for the fields of this one.
std::unique_ptr<QMimeData> DragData(const std::vector<std::string>& names, const std::vector<std::string>& paths);

}  // namespace tarnwick::pages

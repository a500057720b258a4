#pragma once

#include <QPoint>
#include <string>
#include <vector>

class QMimeData;
class QWidget;

namespace tarnwick::platform {

/// Files that were dropped on a window, in the order of the drop, and where.
struct DroppedFiles {
  std::vector<std::string> Paths;  // never empty when a handler gets it
  QPoint Point;                    // on the screen

  /// Whether the point lies in the control's rectangle, edges included, and the control can be seen. Whether it is
  /// enabled plays no part.
  bool IsOver(const QWidget& control) const;
};

/// Adds names of files that this program can read where they lie, such as "a.vpk:models/crate.mdl": dropped on a
/// window of the program they count, and the files' paths do for all other programs.
void PutNames(QMimeData& data, const std::vector<std::string>& names);

/// The local files and folders among dragged data, or the names that PutNames gave it; the point is not set.
DroppedFiles FilesOf(const QMimeData& data);

}  // namespace tarnwick::platform

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

/// The local files and folders among dragged data; the point is not set.
DroppedFiles FilesOf(const QMimeData& data);

}  // namespace tarnwick::platform

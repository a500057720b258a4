#include "platform/dropped_files.h"

#include <QMimeData>
#include <QUrl>
#include <QWidget>

#include "platform/text.h"

namespace tarnwick::platform {

bool DroppedFiles::IsOver(const QWidget& control) const {
  return control.isVisible() && control.rect().contains(control.mapFromGlobal(Point));
}

DroppedFiles FilesOf(const QMimeData& data) {
  DroppedFiles files;
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) files.Paths.push_back(FromQt(url.toLocalFile()));
  }
  return files;
}

}  // namespace tarnwick::platform

#include "settings/documents_folder.h"

#include <QStandardPaths>

namespace tarnwick::settings {

std::string DocumentsFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation).toStdString();
}

}  // namespace tarnwick::settings

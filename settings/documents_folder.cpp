#include "settings/documents_folder.h"

#include <QDir>
#include <QStandardPaths>

namespace tarnwick::settings {

std::string DocumentsFolder() {
  return QDir::toNativeSeparators(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)).toStdString();
}

}  // namespace tarnwick::settings

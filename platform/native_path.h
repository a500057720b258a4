#pragma once

#include <QDir>
#include <string>

namespace tarnwick::platform {

/// The path that Qt has given, which always has slashes, as the system's own programs write it: on Windows with
/// backslashes.
inline std::string PathFromQt(const QString& path) {
  return QDir::toNativeSeparators(path).toStdString();
}

}  // namespace tarnwick::platform

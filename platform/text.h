#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// UTF-8 text as Qt holds it.
inline QString ToQt(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Qt's text as UTF-8.
inline std::string FromQt(const QString& text) {
  return text.toStdString();
}

}  // namespace tarnwick::platform

#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// UTF-8 text as Qt holds it. Bytes that are no UTF-8 are taken for letters of Windows-1252, in which older programs on
/// Windows write their project files and tools their words; so they stay readable, and saving loses none.
QString ToQt(std::string_view text);

/// Qt's text as UTF-8.
inline std::string FromQt(const QString& text) {
  return text.toStdString();
}

}  // namespace tarnwick::platform

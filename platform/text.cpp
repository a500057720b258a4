#include "platform/text.h"

namespace tarnwick::platform {

namespace {

/// 0x80 to 0x9F, the part of Windows-1252 that is not as in Unicode; the five unused ones stay control characters.
constexpr char16_t Windows1252[] =
    u"\u20AC\u0081\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\u008D\u017D\u008F"
    u"\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\u009D\u017E\u0178";

QChar Letter(unsigned char byte) {
  return byte >= 0x80 && byte < 0xA0 ? QChar(Windows1252[byte - 0x80]) : QChar(char16_t{byte});
}

QString FromUtf8(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Bytes of the character that begins with `lead`, if it is sound.
size_t LengthOf(unsigned char lead) {
  return lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

}  // namespace

QString ToQt(std::string_view text) {
  QString whole = FromUtf8(text);
  if (!whole.contains(QChar::ReplacementCharacter)) return whole;
  QString mixed;
  while (!text.empty()) {
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::string_view bytes = text.substr(0, LengthOf(lead));
    const QString character = FromUtf8(bytes);
    const bool isSound = bytes == "\xEF\xBF\xBD" || !character.contains(QChar::ReplacementCharacter);
    mixed += isSound ? character : QString(Letter(lead));
    text.remove_prefix(isSound ? bytes.size() : 1);
  }
  return mixed;
}

}  // namespace tarnwick::platform

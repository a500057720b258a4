#include "platform/browser.h"

#include <QProcess>
#include <QSettings>
#include <QStandardPaths>

#include "platform/text.h"

namespace tarnwick::platform {

namespace {

/// The commands that may start a browser, the best first.
QStringList BrowserCommands() {
#ifdef _WIN32
  const auto defaultOf = [](const QString& key) {
    return QSettings("HKEY_CLASSES_ROOT\\" + key, QSettings::NativeFormat).value("Default").toString();
  };
  return {defaultOf(defaultOf(".htm") + "\\shell\\open\\command")};
#else
  return qEnvironmentVariable("BROWSER").split(':', Qt::SkipEmptyParts) << "x-www-browser"
                                                                        << "sensible-browser";
#endif
}

}  // namespace

std::string BrowserCommand(std::string_view command) {
  constexpr std::string_view Marker = "%1";
  const size_t marker = command.find(Marker);
  if (marker == std::string_view::npos) return std::string(command);
  const bool quoted =
      marker > 0 && command[marker - 1] == '"' && command.substr(marker + Marker.size()).starts_with('"');
  return std::string(command.substr(0, quoted ? marker - 1 : marker));
}

bool StartBrowser(const std::string& address) {
  for (QString command : BrowserCommands()) {
    command.replace("%s", "%1");  // the marker of $BROWSER
    QStringList arguments = QProcess::splitCommand(ToQt(BrowserCommand(FromQt(command))));
    if (arguments.isEmpty()) continue;
    const QString program = QStandardPaths::findExecutable(arguments.takeFirst());
    arguments << ToQt(address);
    if (!program.isEmpty() && QProcess::startDetached(program, arguments)) return true;
  }
  return false;
}

}  // namespace tarnwick::platform

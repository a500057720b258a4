#include "platform/editor.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#ifdef _WIN32
#include <windows.h>

#include <shellapi.h>
#endif

namespace tarnwick::platform {

#ifdef _WIN32

namespace {

bool Execute(const wchar_t* verb, const QString& file, const QString& parameters) {
  const HINSTANCE result = ShellExecuteW(nullptr, verb, file.toStdWString().c_str(), parameters.toStdWString().c_str(),
                                         nullptr, SW_SHOWNORMAL);
  return reinterpret_cast<INT_PTR>(result) > 32;  // anything above is success
}

}  // namespace

bool StartEditor(const QString& path) {
  return Execute(L"edit", path, {});
}

bool StartSystemEditor(const QString& path) {
  return Execute(nullptr, "notepad.exe", '"' + path + '"');
}

#else

namespace {

/// Editors that draw in the terminal that they are started in, and do nothing without one.
bool NeedsTerminal(const QString& program, const QStringList& arguments) {
  static const QStringList InTerminal = {"vi",    "vim",   "nvim",   "nano", "pico", "joe",   "jed", "ed",
                                         "elvis", "micro", "mcedit", "ne",   "hx",   "helix", "kak", "nvi"};
  const QString name = QFileInfo(program).fileName();
  const bool emacsWithout = name.startsWith("emacs") && (arguments.contains("-nw") || arguments.contains("-t"));
  return emacsWithout || InTerminal.contains(name) || name.startsWith("vim.");
}

/// Starts `words` with `path` behind them; false if their program is not there or does not start.
bool Start(QStringList words, const QString& path) {
  if (words.isEmpty()) return false;
  const QString program = QStandardPaths::findExecutable(words.takeFirst());
  if (program.isEmpty()) return false;
  words << path;
  if (!NeedsTerminal(program, words)) return QProcess::startDetached(program, words);
  for (const QString& name : {qEnvironmentVariable("TERMINAL"), QString("x-terminal-emulator"), QString("xterm")}) {
    const QString terminal = name.isEmpty() ? QString() : QStandardPaths::findExecutable(name);
    if (!terminal.isEmpty()) return QProcess::startDetached(terminal, QStringList{"-e", program} + words);
  }
  return false;
}

}  // namespace

bool StartEditor(const QString& path) {
  for (const char* variable : {"VISUAL", "EDITOR"}) {
    if (Start(QProcess::splitCommand(qEnvironmentVariable(variable)), path)) return true;
  }
  return false;
}

bool StartSystemEditor(const QString& /*path*/) {
  return false;
}

#endif

}  // namespace tarnwick::platform

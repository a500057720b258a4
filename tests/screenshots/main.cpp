#include <QApplication>
#include <QElapsedTimer>
#include <QStandardPaths>
#include <QTest>
#include <cstdio>

#include "platform/look.h"
#include "screenshots/subject.h"

namespace {

using tarnwick::screenshots::Stage;
using tarnwick::screenshots::Subject;

bool TakePicture(const Subject& subject, const QString& path) {
  Stage stage;
  const std::unique_ptr<QWidget> window = subject.Make(stage);
  window->show();
  if (!QTest::qWaitForWindowExposed(window.get())) return false;
  QTest::qWait(150);
  return window->grab().save(path);
}

}  // namespace

// tarnwick_screenshots FOLDER light|dark SCALE [NAME]
int main(int argumentCount, char** arguments) {
  QApplication application(argumentCount, arguments);
  const QStringList words = QApplication::arguments();
  if (words.size() < 4) {
    std::fputs("Usage: tarnwick_screenshots FOLDER light|dark SCALE [NAME]\n", stderr);
    return 2;
  }
  QStandardPaths::setTestModeEnabled(true);
  QApplication::setQuitOnLastWindowClosed(false);
#ifdef _WIN32  // whose own style knows no dark windows
  const QString style = words[2] == "dark" ? "Fusion" : "";
#else
  const QString style = "Fusion";
#endif
  tarnwick::platform::ApplyLook(style);
  if (words[2] == "dark") QApplication::setPalette(tarnwick::platform::DarkPalette());

  int failures = 0;
  for (const auto& subjects : {tarnwick::screenshots::ShellSubjects(), tarnwick::screenshots::ModelSubjects(),
                               tarnwick::screenshots::ControlsSubjects(), tarnwick::screenshots::TextureSubjects(),
                               tarnwick::screenshots::ViewSubjects()}) {
    for (const Subject& subject : subjects) {
      if (words.size() > 4 && !QString::fromStdString(subject.Name).contains(words[4])) continue;
      const QString path =
          QString("%1/%2-%3-%4.png").arg(words[1], QString::fromStdString(subject.Name), words[2], words[3]);
      if (TakePicture(subject, path)) continue;
      std::fprintf(stderr, "%s: no picture could be taken\n", qPrintable(path));
      ++failures;
    }
  }
  return failures == 0 ? 0 : 1;
}

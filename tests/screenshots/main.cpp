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

QPalette DarkPalette() {
  QPalette palette(QColor(53, 53, 53));
  palette.setColor(QPalette::Base, QColor(35, 35, 35));
  palette.setColor(QPalette::AlternateBase, QColor(45, 45, 45));
  palette.setColor(QPalette::Text, QColor(230, 230, 230));
  palette.setColor(QPalette::WindowText, QColor(230, 230, 230));
  palette.setColor(QPalette::ButtonText, QColor(230, 230, 230));
  palette.setColor(QPalette::PlaceholderText, QColor(150, 150, 150));
  palette.setColor(QPalette::Link, QColor(110, 170, 255));
  palette.setColor(QPalette::Highlight, QColor(60, 120, 200));
  for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(130, 130, 130));
  }
  return palette;
}

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
  tarnwick::platform::ApplyLook("Fusion");
  if (words[2] == "dark") QApplication::setPalette(DarkPalette());

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

#include <gtest/gtest.h>

#include <QApplication>
#include <QStandardPaths>
#include <cstring>

#ifdef QT_STATIC
#include <QtPlugin>
Q_IMPORT_PLUGIN(QOffscreenIntegrationPlugin)
#endif

// The main of every window test program: an application on a display that needs no screen, with no desktop's style or
// settings of the user in it.
int main(int argumentCount, char** arguments) {
  testing::InitGoogleTest(&argumentCount, arguments);
  if (testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
#ifdef Q_OS_WIN  // the display that needs no screen looks for fonts beside the program, and has none in their place
  if (!qEnvironmentVariableIsSet("QT_QPA_FONTDIR")) qputenv("QT_QPA_FONTDIR", qgetenv("WINDIR") + "\\Fonts");
#endif
  QStandardPaths::setTestModeEnabled(true);
  QApplication application(argumentCount, arguments);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setStyle("Fusion");
  return RUN_ALL_TESTS();
}

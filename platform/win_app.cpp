#include "platform/win_app.h"

#include "platform/bitmap_button.h"
#include "platform/look.h"

#ifdef QT_STATIC  // besides the desktop's own, which is always there: windows without a screen
#include <QtPlugin>
Q_IMPORT_PLUGIN(QOffscreenIntegrationPlugin)
#endif

namespace tarnwick::platform {

CWinApp::CWinApp(int& argumentCount, char** arguments) : m_application(argumentCount, arguments) {
  ApplyLook();
  QApplication::setWindowIcon(IconOf("tarnwick"));
  // The main window is a modal dialog whose end is the program's end; a job may still be finishing behind it.
  QApplication::setQuitOnLastWindowClosed(false);
}

CWinApp::~CWinApp() = default;

int CWinApp::Run() {
  if (InitInstance()) QApplication::exec();
  return ExitInstance();
}

int CWinApp::ExitInstance() {
  return 0;
}

}  // namespace tarnwick::platform

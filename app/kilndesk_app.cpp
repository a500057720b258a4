#include "app/kilndesk_app.h"

#include "app/kilndesk_dlg.h"

namespace tarnwick::app {

CKilndeskApp::CKilndeskApp(int& argumentCount, char** arguments, StartMode mode, std::vector<std::string> files)
    : CWinApp(argumentCount, arguments),
      m_mode(mode),
      m_files(std::move(files)),
      m_settings([this](const std::string& text) {
        m_desktop.Box(QApplication::activeWindow(), platform::BoxIcon::Exclamation, text, "Warning");
      }) {}

bool CKilndeskApp::InitInstance() {
  if (m_mode == StartMode::Embedded) return true;
  CKilndeskDlg dialog(m_settings, m_desktop);
  dialog.OpenAtStart(m_files);
  dialog.DoModal();
  return false;
}

}  // namespace tarnwick::app

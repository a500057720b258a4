#pragma once

#include "app/start_switches.h"
#include "platform/qt_desktop.h"
#include "platform/win_app.h"
#include "settings/qt_settings_store.h"

namespace tarnwick::app {

/// The program: decides from the command line whether a window opens, and runs the main dialog.
class CKilndeskApp : public platform::CWinApp {
 public:
  /// `mode` is what the command line asks for, `files` those to show at once.
  CKilndeskApp(int& argumentCount, char** arguments, StartMode mode, std::vector<std::string> files);

 protected:
  bool InitInstance() override;

 private:
  StartMode m_mode;
  std::vector<std::string> m_files;
  platform::QtDesktop m_desktop;
  settings::QtSettingsStore m_settings;
};

}  // namespace tarnwick::app

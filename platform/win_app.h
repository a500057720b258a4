#pragma once

#include <QApplication>
#include <string>

namespace tarnwick::platform {

/// The application: brings Qt up, runs InitInstance, the event loop if that asks for it, and ExitInstance.
class CWinApp {
 public:
  /// `argumentCount` and `arguments` are main's and must outlive the object.
  CWinApp(int& argumentCount, char** arguments);
  virtual ~CWinApp();
  CWinApp(const CWinApp&) = delete;
  CWinApp& operator=(const CWinApp&) = delete;

  /// Runs the application and gives the process's exit code.
  int Run();

 protected:
  /// Starts the program. True goes on into the event loop, false straight to ExitInstance.
  virtual bool InitInstance() = 0;
  /// Ends the program and gives its exit code.
  virtual int ExitInstance();

 private:
  QApplication m_application;
};

}  // namespace tarnwick::platform

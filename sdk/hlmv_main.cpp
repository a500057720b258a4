#include <QApplication>
#include <QByteArray>
#include <iostream>
#include <vector>

#include "core/command_line.h"
#include "platform/look.h"
#include "platform/qt_desktop.h"
#include "platform/text.h"
#include "sdk/hlmv_arguments.h"
#include "sdk/tool_console.h"
#include "view/widget/model_window.h"

namespace {

/// Whether there is a desktop to open windows on; Qt would end the process without one.
bool HasDesktop() {
#if defined(_WIN32) || defined(__APPLE__)
  return true;
#else
  return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
         !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
#endif
}

}  // namespace

int main(int argumentCount, char** arguments) {
  using namespace tarnwick;
  const std::vector<std::string> words = core::CommandLine(argumentCount, arguments).Arguments();
  const auto request = sdk::ReadHlmvArguments(words, std::cerr);
  if (!request) return sdk::ToolWrongUsage;
  if (request->WantsHelp) {
    std::cout << sdk::HlmvHelp;
    return sdk::ToolSuccess;
  }
  if (!HasDesktop()) {
    std::cerr << "Error: there is no display to open a window on\n";
    return sdk::ToolFailure;
  }
  int one = 1;  // Qt has switches of its own, which are not the tool's
  QApplication application(one, arguments);
  QApplication::setApplicationName("hlmv");
  QApplication::setApplicationDisplayName("Model Viewer");
  platform::ApplyLook();
  platform::QtDesktop desktop;
  const QString game = platform::ToQt(request->GameDirectory);
  const std::vector<std::string> models = request->Models.empty() ? std::vector<std::string>{""} : request->Models;
  int aside = 0;
  for (const std::string& model : models) {
    auto* window = new view::ModelWindow(desktop);
    window->Open(platform::ToQt(model), game);
    if (models.size() > 1) window->move(40 + aside, 40 + aside);
    aside += 32;
    window->show();
  }
  return QApplication::exec();
}

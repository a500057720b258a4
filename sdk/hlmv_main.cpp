#include <QApplication>
#include <QByteArray>
#include <QPointer>
#include <memory>
#include <sstream>
#include <vector>

#include "core/command_line.h"
#include "pages/content_dialog.h"
#include "platform/bitmap_button.h"
#include "platform/look.h"
#include "platform/qt_desktop.h"
#include "platform/start_message.h"
#include "platform/text.h"
#include "sdk/hlmv_arguments.h"
#include "sdk/tool_console.h"
#include "settings/qt_settings_store.h"
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

/// The window of game content, made when it is first wanted. What is chosen there is opened in the window that asked.
class Content {
 public:
  Content(tarnwick::core::AppSettings& settings, tarnwick::platform::Desktop& desktop, std::string gameDirectory)
      : m_settings(settings), m_desktop(desktop), m_gameDirectory(std::move(gameDirectory)) {}

  void Browse(tarnwick::view::ModelWindow& window) {
    using namespace tarnwick;
    m_asking = &window;
    if (m_window == nullptr) {
      pages::ContentContext context{m_settings, m_desktop};
      context.Open = [this](const std::vector<std::string>& names) { return Open(names); };
      if (!m_gameDirectory.empty()) context.GameDirectory = m_gameDirectory;
      m_window = std::make_unique<pages::CContentDialog>(context, nullptr);
    }
    m_window->BrowseGame(archives::ContentKind::Model);
  }

 private:
  size_t Open(const std::vector<std::string>& names) {
    if (m_asking == nullptr) return 0;
    QStringList paths;
    for (const std::string& name : names) paths << tarnwick::platform::ToQt(name);
    const size_t opened = m_asking->OpenAll(paths);
    if (opened > 0) m_asking->raise(), m_asking->activateWindow();
    return opened;
  }

  tarnwick::core::AppSettings& m_settings;
  tarnwick::platform::Desktop& m_desktop;
  const std::string m_gameDirectory;
  QPointer<tarnwick::view::ModelWindow> m_asking;
  std::unique_ptr<tarnwick::pages::CContentDialog> m_window;
};

}  // namespace

int main(int argumentCount, char** arguments) {
  using namespace tarnwick;
  const std::vector<std::string> words = core::CommandLine(argumentCount, arguments).Arguments();
  const auto tell = [](const std::string& text, platform::StartStream stream) {
    platform::TellAtStart(text, stream, "Model Viewer");
  };
  std::ostringstream wrong;
  const auto request = sdk::ReadHlmvArguments(words, wrong);
  if (!request) {
    tell(wrong.str(), platform::StartStream::Error);
    return sdk::ToolWrongUsage;
  }
  if (request->WantsHelp) {
    tell(sdk::HlmvHelp, platform::StartStream::Output);
    return sdk::ToolSuccess;
  }
  if (!HasDesktop()) {
    tell("Error: there is no display to open a window on\n", platform::StartStream::Error);
    return sdk::ToolFailure;
  }
  int one = 1;  // Qt has switches of its own, which are not the tool's
  QApplication application(one, arguments);
  QApplication::setApplicationName("hlmv");
  QApplication::setApplicationDisplayName("Model Viewer");
  platform::ApplyLook();
  QApplication::setWindowIcon(platform::IconOf("tarnwick"));
  platform::QtDesktop desktop;
  const QString game = platform::ToQt(request->GameDirectory);
  settings::QtSettingsStore store([&desktop](const std::string& text) {
    desktop.Box(QApplication::activeWindow(), platform::BoxIcon::Exclamation, text, "Warning");
  });
  Content content(store, desktop, request->GameDirectory);
  const std::vector<std::string> models = request->Models.empty() ? std::vector<std::string>{""} : request->Models;
  int aside = 0;
  for (const std::string& model : models) {
    auto* window = new view::ModelWindow(desktop);
    window->OfferContent([&content](view::ModelWindow& asking) { content.Browse(asking); });
    window->Open(platform::ToQt(model), game);
    if (models.size() > 1) window->move(40 + aside, 40 + aside);
    aside += 32;
    window->show();
  }
  return QApplication::exec();
}

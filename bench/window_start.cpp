// Opens the main window with an empty store and prints the milliseconds from the start of main to the end of its first
// painting. Run it a few times on a screen, or on a virtual one: xvfb-run window_start_bench.
#include <QElapsedTimer>
#include <QTimer>
#include <cstdio>

#include "app/kilndesk_dlg.h"
#include "platform/qt_desktop.h"
#include "platform/win_app.h"
#include "settings/qt_settings_store.h"

namespace {

class StartBench : public tarnwick::platform::CWinApp {
 public:
  StartBench(int& argumentCount, char** arguments, const QElapsedTimer& clock)
      : CWinApp(argumentCount, arguments), m_clock(clock) {}

 protected:
  bool InitInstance() override {
    tarnwick::platform::QtDesktop desktop;
    tarnwick::settings::QtSettingsStore settings("/nonexistent/settings.conf", {});
    const qint64 ready = m_clock.elapsed();
    tarnwick::app::CKilndeskDlg dialog(settings, desktop);
    FirstPaint paint(dialog);
    dialog.DoModal();
    std::printf("Qt up after %lld ms, first paint done after %lld ms\n", static_cast<long long>(ready),
                static_cast<long long>(m_clock.elapsed()));
    return false;
  }

 private:
  /// Ends the dialog once it has painted: the timer fires when the whole tree has.
  class FirstPaint : public QObject {
   public:
    explicit FirstPaint(tarnwick::platform::CDialog& dialog) : m_dialog(dialog) { dialog.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
      if (event->type() == QEvent::Paint) QTimer::singleShot(0, this, [this] { m_dialog.EndDialog(0); });
      return false;
    }

   private:
    tarnwick::platform::CDialog& m_dialog;
  };

  const QElapsedTimer& m_clock;
};

}  // namespace

int main(int argumentCount, char** arguments) {
  QElapsedTimer clock;
  clock.start();
  return StartBench(argumentCount, arguments, clock).Run();
}

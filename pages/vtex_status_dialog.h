#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "jobs/events.h"
#include "platform/dialog.h"
#include "tools/whole_log.h"

class QProgressBar;

namespace Ui {
class VtexStatusDialog;
}

namespace tarnwick::pages {

/// The window of a material compile: what the tool prints for each material, and how far the compile has got. The page
/// owns the one window and shows it anew for each compile.
class CVtexStatusDialog : public platform::CDialog {
  Q_OBJECT

 public:
  /// `stop` is called when the user wants the compile to end.
  CVtexStatusDialog(platform::Desktop& desktop, QWidget* parent, std::function<void()> stop);
  ~CVtexStatusDialog() override;

  /// Empties the window for a new compile.
  void Begin();
  /// Shows what the job tells.
  void Show(const jobs::Event& event);

  QProgressBar& Bar() const;

 private:
  void OnItemStarted(const jobs::ItemStarted& started);
  void OnLine(const jobs::Line& line);
  void OnItemFinished(const jobs::ItemFinished& finished);
  void OnFinished(const jobs::JobResult& result);
  void ShowLog();
  bool IsLastShown() const;

  std::unique_ptr<Ui::VtexStatusDialog> m_ui;
  static constexpr size_t KeptBytes = size_t{1} << 20;  // of each material

  /// What is shown of a material; `Shown` is there at its end.
  struct MaterialLog {
    std::string Shown;
    tools::WholeLog Whole{KeptBytes};  // everything that was printed so far
    bool IsDone = false;
  };
  std::vector<MaterialLog> m_logs;  // one for each material so far
  size_t m_count = 0;
  size_t m_done = 0;
  QString m_note;  // on which tool is used
};

}  // namespace tarnwick::pages

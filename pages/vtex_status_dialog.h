#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "pages/material_job.h"
#include "platform/dialog.h"

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
  void Show(const JobEvent<MaterialOutcome>& event);
  /// The compile has ended.
  void End();

  QProgressBar& Bar() const;

 private:
  void ShowLog();

  std::unique_ptr<Ui::VtexStatusDialog> m_ui;
  /// What a material's run has printed so far; `Whole` is there at its end.
  struct MaterialLog {
    QString Shown;
    QString Whole;
  };
  std::vector<MaterialLog> m_logs;  // one for each material so far
  size_t m_count = 0;
  size_t m_done = 0;
  size_t m_failed = 0;
};

}  // namespace tarnwick::pages

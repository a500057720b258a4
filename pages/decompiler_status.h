#pragma once

#include <memory>
#include <string>

#include "decompiler/decompile_job.h"
#include "platform/dialog.h"

class QProgressBar;

namespace Ui {
class DecompilerStatus;
}

namespace tarnwick::pages {

/// The log of a decompile job. The page owns the one window and shows it anew for each job.
class CDecompilerStatus : public platform::CDialog {
  Q_OBJECT

 public:
  CDecompilerStatus(platform::Desktop& desktop, QWidget* parent);
  ~CDecompilerStatus() override;

  /// Empties the log for a job that writes into `outputDirectory`.
  void Begin(const std::string& outputDirectory);
  /// Adds text to the log and keeps its end in sight, unless the user has scrolled away from it.
  void Append(const std::string& text);
  void ShowProgress(const decompiler::DecompileProgress& progress);
  /// The job has ended.
  void End(const decompiler::DecompileProgress& progress);

  QProgressBar& Bar() const;

 private:
  void OnOpenFolder();
  QString BelowOutput(const std::string& path) const;

  std::unique_ptr<Ui::DecompilerStatus> m_ui;
  std::string m_outputDirectory;
};

}  // namespace tarnwick::pages

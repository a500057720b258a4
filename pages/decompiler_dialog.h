#pragma once

#include <memory>

#include "pages/decompiler_status.h"
#include "pages/page.h"
#include "platform/job_runner.h"

class QCompleter;
class QLineEdit;

namespace Ui {
class DecompilerDialog;
}

namespace tarnwick::pages {

/// The tab "Model Decompile": names a model and an output directory and runs the decompiler on them.
class CDecompilerDialog : public CPage {
  Q_OBJECT

 public:
  explicit CDecompilerDialog(const PageContext& context, QWidget* parent = nullptr);
  ~CDecompilerDialog() override;

  void OnDropFiles(const platform::DroppedFiles& drop) override;

  void OnBrowseModel();
  void OnBrowseOutput();
  /// Starts the job; the log window shows how it goes on.
  void OnExtract();

 protected:
  void OnInitDialog() override;

 private:
  void SetModel(const std::string& path);
  void SetOutputDirectory(const std::string& path);
  void OfferRecentPaths();

  std::unique_ptr<Ui::DecompilerDialog> m_ui;
  CDecompilerStatus m_status;
  platform::JobRunner m_jobs;  // behind the window that it writes to
};

}  // namespace tarnwick::pages

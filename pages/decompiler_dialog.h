#pragma once

#include <memory>
#include <string>
#include <vector>

#include "pages/decompiler_status.h"
#include "pages/page.h"
#include "pages/page_job.h"

class QCompleter;
class QLineEdit;

namespace Ui {
class DecompilerDialog;
}

namespace tarnwick::view {
class ModelViewer;
}

namespace tarnwick::pages {

class SourcesView;

/// The tab "Model Decompile": names models, or a folder of them, and an output directory and runs the decompiler on
/// them.
class CDecompilerDialog : public CPage {
  Q_OBJECT

 public:
  explicit CDecompilerDialog(const PageContext& context, QWidget* parent = nullptr);
  ~CDecompilerDialog() override;

  void OnDropFiles(const platform::DroppedFiles& drop) override;
  size_t OpenFiles(const std::vector<std::string>& paths) override;

  void OnBrowseModel();
  void OnBrowseOutput();
  /// Starts the job; the log window shows how it goes on.
  void OnExtract();
  /// Verifies the models of the last job, beside the window.
  void OnVerify();

 protected:
  void OnInitDialog() override;

 private:
  void SetModels(const std::vector<std::string>& paths);
  std::vector<std::string> Models() const;
  void SetOutputDirectory(const std::string& path);
  void OfferRecentPaths();
  void ShowSide(bool on);
  void ShowModel();
  void TakeFiles(const jobs::Event& event);

  std::unique_ptr<Ui::DecompilerDialog> m_ui;
  std::vector<std::string> m_chosen;  // several models, as long as the box says what it said for them
  view::ModelViewer* m_viewer;
  SourcesView* m_sources;
  CDecompilerStatus m_status;
  PageJob m_job;  // behind the window that it writes to
};

}  // namespace tarnwick::pages

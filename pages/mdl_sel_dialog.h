#pragma once

#include <memory>

#include "pages/mdl_dialog.h"
#include "pages/page.h"
#include "pages/qc_compile_dialog.h"

namespace Ui {
class MdlSelDialog;
}

namespace tarnwick::pages {

/// The tab "Model Compile": the form of a model project and the page for a ready-made script, on two inner tabs.
class CMDLSelDialog : public CPage {
  Q_OBJECT

 public:
  explicit CMDLSelDialog(const PageContext& context, QWidget* parent = nullptr);
  ~CMDLSelDialog() override;

  /// Hands the files to the inner page that shows, unless a run keeps that busy.
  void OnDropFiles(const platform::DroppedFiles& drop) override;
  size_t OpenFiles(const std::vector<std::string>& paths) override;
  void SaveSettings() override;

  /// Shows the material page's directory in the form.
  void SetMaterialDirectory(const std::string& directory) { m_formPage.SetMaterialDirectory(directory); }

 protected:
  void OnInitDialog() override;

 private:
  void OnStudiomdlOptions();

  std::unique_ptr<Ui::MdlSelDialog> m_ui;
  CQCCompileDialog m_qcPage;
  CMDLDialog m_formPage;
};

}  // namespace tarnwick::pages

#pragma once

#include <memory>

#include "pages/model_options_pages.h"
#include "pages/page.h"
#include "project/entry_editors.h"

namespace Ui {
class ModelOptionsDialog;
}

namespace tarnwick::pages {

/// Edits four fields of the model options, which OK takes, and five lists of the project, which change at once. The
/// tab that was open last is remembered.
class CModelOptionsDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CModelOptionsDialog(const PageContext& context, QWidget* parent, project::ModelProject& project);
  ~CModelOptionsDialog() override;

 protected:
  void OnInitDialog() override;
  void DoDataExchange(platform::CDataExchange& exchange) override;
  void OnOK() override;
  bool EnterInPagesIsOurs() const override { return true; }

 private:
  void RememberTab(int index);

  std::unique_ptr<Ui::ModelOptionsDialog> m_ui;
  core::AppSettings& m_settings;
  project::ModelOptions& m_options;
  project::ModelOptionsForm m_form;
  CMdlAttachDlg m_attachmentPage;
  CMdlGibDlg m_gibPage;
  CMdlLODDlg m_lodPage;
  CSkinDlg m_skinPage;
  CMdlQCCmdDlg m_commandPage;
};

}  // namespace tarnwick::pages

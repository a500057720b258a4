#include "pages/mdl_sel_dialog.h"

#include "core/settings_table.h"
#include "pages/studiomdl_options_dialog.h"
#include "ui_mdl_sel_dialog.h"

namespace tarnwick::pages {

namespace setting = core::setting;

CMDLSelDialog::CMDLSelDialog(const PageContext& context, QWidget* parent)
    : CPage(context, parent), m_ui(std::make_unique<Ui::MdlSelDialog>()), m_qcPage(context), m_formPage(context) {
  m_ui->setupUi(this);
  m_ui->tabs->addTab(&m_formPage, "Compile Model");
  m_ui->tabs->addTab(&m_qcPage, "Compile w/Existing QC");
  connect(m_ui->optionsButton, &QAbstractButton::clicked, this, &CMDLSelDialog::OnStudiomdlOptions);
}

CMDLSelDialog::~CMDLSelDialog() = default;

void CMDLSelDialog::OnInitDialog() {
  CPage::OnInitDialog();
  m_formPage.Create();
  m_qcPage.Create();
  m_ui->tabs->setCurrentIndex(setting::CompileMode.Read(Settings()));  // no such tab: the first one stays
}

void CMDLSelDialog::OnDropFiles(const platform::DroppedFiles& drop) {
  CPage& page = m_ui->tabs->currentIndex() == 0 ? static_cast<CPage&>(m_formPage) : m_qcPage;
  if (page.isEnabled()) page.OnDropFiles(drop);
}

size_t CMDLSelDialog::OpenFiles(const std::vector<std::string>& paths) {
  const size_t scripts = m_qcPage.OpenFiles(paths);
  const size_t meshes = m_formPage.OpenFiles(paths);
  if (scripts + meshes > 0) m_ui->tabs->setCurrentIndex(scripts > 0 ? 1 : 0);
  return scripts + meshes;
}

void CMDLSelDialog::SaveSettings() {
  setting::CompileMode.Write(Settings(), m_ui->tabs->currentIndex());
  m_formPage.SaveSettings();
  m_qcPage.SaveSettings();
}

void CMDLSelDialog::OnStudiomdlOptions() {
  CStudiomdlOptionsDialog(DesktopSeam(), this, Options().studioMdlOptions).DoModal();
}

}  // namespace tarnwick::pages

#include "pages/model_options_dialog.h"

#include "core/settings_table.h"
#include "pages/help_dialogs.h"
#include "pages/refusal_box.h"
#include "platform/bitmap_button.h"
#include "ui_model_options_dialog.h"

namespace tarnwick::pages {

namespace setting = core::setting;

CModelOptionsDialog::CModelOptionsDialog(const PageContext& context, QWidget* parent, project::ModelProject& project)
    : CDialog(context.Desktop, parent),
      m_ui(std::make_unique<Ui::ModelOptionsDialog>()),
      m_settings(context.Settings),
      m_options(project.options),
      m_attachmentPage(context.Desktop, this, project.Attachments),
      m_gibPage(context.Desktop, this, project.Gibs, setting::GameDirectory.Read(context.Settings)),
      m_lodPage(context.Desktop, this, project.Lods),
      m_skinPage(context.Desktop, this, project.Skins),
      m_commandPage(context.Desktop, this, project.QcCommands) {
  m_ui->setupUi(this);
  m_ui->tabs->addTab(&m_attachmentPage, "Attachments");
  m_ui->tabs->addTab(&m_gibPage, "Gibs");
  m_ui->tabs->addTab(&m_lodPage, "LOD's");
  m_ui->tabs->addTab(&m_skinPage, "Skins");
  m_ui->tabs->addTab(&m_commandPage, "Additional Commands");
  connect(m_ui->surfacePropHelpButton, &QAbstractButton::clicked, this,
          [this] { CSurfacePropHelpDialog(DesktopSeam(), this).DoModal(); });
  connect(m_ui->propTypeHelpButton, &QAbstractButton::clicked, this,
          [this] { CPropPhysicsHelpDialog(DesktopSeam(), this).DoModal(); });
  connect(m_ui->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(m_ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

CModelOptionsDialog::~CModelOptionsDialog() {
  m_ui->tabs->disconnect(this);  // the pages go before the tabs, which would tell of other tabs chosen
}

void CModelOptionsDialog::OnInitDialog() {
  m_form = project::ShowModelOptions(m_options);
  CDialog::OnInitDialog();
  platform::LoadAllCaptionBitmaps(*this);
  for (CDialog* page :
       std::initializer_list<CDialog*>{&m_attachmentPage, &m_gibPage, &m_lodPage, &m_skinPage, &m_commandPage}) {
    page->Create();
  }
  m_ui->tabs->setCurrentIndex(setting::ModelOptionsTab.Read(m_settings));
  connect(m_ui->tabs, &QTabWidget::currentChanged, this, &CModelOptionsDialog::RememberTab);
}

void CModelOptionsDialog::RememberTab(int index) {
  setting::ModelOptionsTab.Write(m_settings, index);
}

void CModelOptionsDialog::DoDataExchange(platform::CDataExchange& exchange) {
  DDX_Text(exchange, *m_ui->scaleEdit, m_form.scale);
  DDX_Text(exchange, *m_ui->massEdit, m_form.mass);
  DDX_Text(exchange, *m_ui->surfacePropEdit, m_form.surfaceProp);
  DDX_Text(exchange, *m_ui->propTypeEdit, m_form.propPhysicsType);
}

void CModelOptionsDialog::OnOK() {
  UpdateData(true);
  if (!ShowRefusal(*this, project::TakeModelOptions(m_form, m_options))) EndDialog(Accepted);
}

}  // namespace tarnwick::pages

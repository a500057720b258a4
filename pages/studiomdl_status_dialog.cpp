#include "pages/studiomdl_status_dialog.h"

#include "ui_studiomdl_status_dialog.h"

namespace tarnwick::pages {

CStudioMDLStatusDialog::CStudioMDLStatusDialog(platform::Desktop& desktop, QWidget* parent)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::StudioMdlStatusDialog>()) {
  m_ui->setupUi(this);
  m_log.SetTarget(&m_text, [this] { m_ui->outputEdit->ShowText(m_text); });
  connect(m_ui->okButton, &QAbstractButton::clicked, this, &QDialog::accept);
}

CStudioMDLStatusDialog::~CStudioMDLStatusDialog() = default;

void CStudioMDLStatusDialog::Clear() {
  m_text.clear();
  m_ui->outputEdit->Clear();
}

ToolRunControls CStudioMDLStatusDialog::Controls() const {
  return {m_ui->progressBar, m_ui->stopButton, m_ui->copyCommandButton, m_ui->wholeLogButton, m_ui->verdictLabel};
}

}  // namespace tarnwick::pages

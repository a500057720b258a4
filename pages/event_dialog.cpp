#include "pages/event_dialog.h"

#include "pages/refusal_box.h"
#include "project/sequence_editor.h"
#include "ui_event_dialog.h"

namespace tarnwick::pages {

CEventDialog::CEventDialog(platform::Desktop& desktop, QWidget* parent)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::EventDialog>()) {
  m_ui->setupUi(this);
  connect(m_ui->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(m_ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

CEventDialog::~CEventDialog() = default;

void CEventDialog::DoDataExchange(platform::CDataExchange& exchange) {
  DDX_Text(exchange, *m_ui->nameEdit, Entry.name);
  DDX_Text(exchange, *m_ui->frameEdit, Entry.frame);
  DDX_Text(exchange, *m_ui->optionEdit, Entry.option);
}

void CEventDialog::OnOK() {
  UpdateData(true);
  if (!ShowRefusal(*this, project::CheckEvent(Entry))) EndDialog(Accepted);
}

}  // namespace tarnwick::pages

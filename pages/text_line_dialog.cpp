#include "pages/text_line_dialog.h"

#include "pages/refusal_box.h"
#include "platform/text.h"
#include "project/entry_editors.h"
#include "project/sequence_editor.h"
#include "ui_text_line_dialog.h"

namespace tarnwick::pages {

CTextLineDialog::CTextLineDialog(platform::Desktop& desktop, QWidget* parent, const QString& caption)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::TextLineDialog>()) {
  m_ui->setupUi(this);
  setWindowTitle(caption);
  connect(m_ui->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(m_ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

CTextLineDialog::~CTextLineDialog() = default;

void CTextLineDialog::DoDataExchange(platform::CDataExchange& exchange) {
  DDX_Text(exchange, *m_ui->textEdit, Text);
}

void CTextLineDialog::OnOK() {
  if (ShowRefusal(*this, Check(platform::FromQt(m_ui->textEdit->text())))) return;
  CDialog::OnOK();
}

CAnimEditCtrl::CAnimEditCtrl(platform::Desktop& desktop, QWidget* parent)
    : CTextLineDialog(desktop, parent, "Edit Animation Command") {}

project::Verdict CAnimEditCtrl::Check(const std::string& text) const {
  return project::CheckSequenceCommand(text);
}

CQCCmdDialog::CQCCmdDialog(platform::Desktop& desktop, QWidget* parent)
    : CTextLineDialog(desktop, parent, "Edit QC Command") {}

project::Verdict CQCCmdDialog::Check(const std::string& text) const {
  return project::CheckQcCommand({text});
}

}  // namespace tarnwick::pages

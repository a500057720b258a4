#include "app/about_dlg.h"

#include <QPushButton>

#include "app/web_addresses.h"
#include "ui_about_dlg.h"

namespace tarnwick::app {

namespace {

QString Link(const QString& address) {
  return QString("<u><font color=\"#0000ff\"><a href=%1>%1</a></font></u>").arg(address);
}

}  // namespace

CAboutDlg::CAboutDlg(platform::Desktop& desktop, QWidget* parent) : CDialog(desktop, parent) {
  Ui::AboutDlg ui;
  ui.setupUi(this);
  ui.pageLink->SetWindowText(Link(MakerPage));
  ui.mailLink->SetWindowText(Link(QString("mailto:") + MailBox));
  // Enter closes the box at first; Tab goes to the links.
  ui.buttonBox->button(QDialogButtonBox::Ok)->setFocus();
  connect(ui.buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
}

}  // namespace tarnwick::app

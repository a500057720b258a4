#include "app/about_dlg.h"

#include <QPushButton>

#include "pages/web_addresses.h"
#include "platform/text.h"
#include "ui_about_dlg.h"

namespace tarnwick::app {

CAboutDlg::CAboutDlg(platform::Desktop& desktop, QWidget* parent) : CDialog(desktop, parent) {
  Ui::AboutDlg ui;
  ui.setupUi(this);
  ui.pageLink->SetWindowText(platform::ToQt(pages::LinkText(pages::MakerPage)));
  ui.mailLink->SetWindowText(platform::ToQt(pages::LinkText(std::string("mailto:") + pages::MailBox)));
  // Enter closes the box at first; Tab goes to the links.
  ui.buttonBox->button(QDialogButtonBox::Ok)->setFocus();
  connect(ui.buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
}

}  // namespace tarnwick::app

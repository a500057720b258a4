#include "pages/collision_help_dialog.h"

#include "pages/web_addresses.h"
#include "platform/text.h"
#include "ui_collision_help_dialog.h"

namespace tarnwick::pages {

CCollisionHelpDialog::CCollisionHelpDialog(platform::Desktop& desktop, QWidget* parent) : CDialog(desktop, parent) {
  Ui::CollisionHelpDialog ui;
  ui.setupUi(this);
  ui.pageLink->SetWindowText(platform::ToQt(LinkText(CollisionModelPage)));
  connect(ui.buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
}

}  // namespace tarnwick::pages

#include "app/game_directory_help_dialog.h"

#include "ui_game_directory_help_dialog.h"

namespace tarnwick::app {

CGameDirectoryHelpDialog::CGameDirectoryHelpDialog(platform::Desktop& desktop, QWidget* parent)
    : CDialog(desktop, parent) {
  Ui::GameDirectoryHelpDialog ui;
  ui.setupUi(this);
  connect(ui.buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
}

}  // namespace tarnwick::app

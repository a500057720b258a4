#include "pages/help_dialogs.h"

#include <QPushButton>

#include "ui_help_dialog.h"

namespace tarnwick::pages {

CHelpDialog::CHelpDialog(platform::Desktop& desktop, QWidget* parent, const char* caption, const char* text)
    : CDialog(desktop, parent) {
  Ui::HelpDialog ui;
  ui.setupUi(this);
  setWindowTitle(caption);
  ui.textLabel->setText(QString(text).remove('\r'));
  ui.buttonBox->button(QDialogButtonBox::Ok)->setFocus();
  connect(ui.buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
}

CMdlMatDialog::CMdlMatDialog(platform::Desktop& desktop, QWidget* parent)
    : CHelpDialog(desktop, parent, "Material Path Help",
                  "This tells the model where to look for materials. Change in Material Compile Tab, Path is relative "
                  "to <gamedir>\\materials\\models). \n\n"
                  "This MUST be the same as when you compiled the materials. Otherwise the model will look for "
                  "materials in the wrong place and you will get the fabulous checkerboard pattern instead") {}

CSurfacePropHelpDialog::CSurfacePropHelpDialog(platform::Desktop& desktop, QWidget* parent)
    : CHelpDialog(desktop, parent, "Surface Prop Help",
                  "Set this to the material type of the model\r\n"
                  "Standard materials are wood, metal, concretel\r\n"
                  "Material types are defined in surfaceprops.txt\r\n") {}

CPropPhysicsHelpDialog::CPropPhysicsHelpDialog(platform::Desktop& desktop, QWidget* parent)
    : CHelpDialog(desktop, parent, "Prop_Physics types help",
                  "The prop_physics type defines the physics characteristics\r\n"
                  "of the model including health. This consists of a material type and\r\n"
                  "size, e.g \"metal.small\", \"glass.medium\". etc. These types are defined\r\n"
                  "in scripts\\propdata.txt") {}

}  // namespace tarnwick::pages

#include "pages/studiomdl_options_dialog.h"

#include <QCheckBox>

#include "platform/text.h"
#include "tools/studiomdl_command.h"
#include "ui_studiomdl_options_dialog.h"

namespace tarnwick::pages {

CStudiomdlOptionsDialog::CStudiomdlOptionsDialog(platform::Desktop& desktop, QWidget* parent, int32_t& options)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::StudioMdlOptionsDialog>()), m_options(options) {
  m_ui->setupUi(this);
  const int rows = (static_cast<int>(tools::StudiomdlOptions.size()) + 1) / 2;
  for (const tools::StudiomdlOption& option : tools::StudiomdlOptions) {
    auto* box = new QCheckBox(platform::ToQt(option.Caption), this);
    box->setChecked((static_cast<uint32_t>(options) & option.Bit) != 0);
    if (option.Switch.empty()) {
      box->setEnabled(false);
      box->setToolTip("studiomdl has no switch for this; the setting is kept with the project");
    } else {
      box->setToolTip(platform::ToQt(option.Switch).trimmed());
    }
    const int number = static_cast<int>(m_boxes.size());
    m_ui->optionsLayout->addWidget(box, number % rows, number / rows);
    m_boxes.push_back(box);
  }
  connect(m_ui->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
}

CStudiomdlOptionsDialog::~CStudiomdlOptionsDialog() = default;

void CStudiomdlOptionsDialog::OnOK() {
  auto bits = static_cast<uint32_t>(m_options);
  for (size_t i = 0; i < m_boxes.size(); ++i) {
    const uint32_t bit = tools::StudiomdlOptions[i].Bit;
    bits = m_boxes[i]->isChecked() ? bits | bit : bits & ~bit;
  }
  m_options = static_cast<int32_t>(bits);
  CDialog::OnOK();
}

}  // namespace tarnwick::pages

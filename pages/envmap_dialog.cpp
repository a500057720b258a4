#include "pages/envmap_dialog.h"

#include "pages/file_chooser.h"
#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "ui_envmap_dialog.h"

namespace tarnwick::pages {

using platform::FromQt;
using platform::ToQt;

CEnvmapDialog::CEnvmapDialog(platform::Desktop& desktop, QWidget* parent)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::EnvmapDialog>()) {
  m_ui->setupUi(this);
  connect(m_ui->browseSpecularButton, &QAbstractButton::clicked, this,
          [this] { BrowseForMap(*this, *m_ui->specularEdit, "Name of Normal MAP TGA"); });
  connect(m_ui->okButton, &QAbstractButton::clicked, this, &QDialog::accept);
}

CEnvmapDialog::~CEnvmapDialog() = default;

void CEnvmapDialog::OnInitDialog() {
  CDialog::OnInitDialog();
  platform::LoadAllCaptionBitmaps(*this);
  m_ui->picture->setPixmap(platform::IconOf("envmap").pixmap(m_ui->picture->size()));
  AcceptFiles();
}

void CEnvmapDialog::Show(const tools::MaterialCompile& values) {
  m_ui->normalMaskCheck->setChecked(values.MaskInNormalAlpha);
  m_ui->illumMaskCheck->setChecked(values.MaskInIllumAlpha);
  m_ui->baseMaskCheck->setChecked(values.MaskInBaseAlpha);
  m_ui->contrastEdit->setText(ToQt(values.EnvMapContrast));
  m_ui->tintEdit->setText(ToQt(values.EnvMapTint));
  m_ui->saturationEdit->setText(ToQt(values.EnvMapSaturation));
  m_ui->specularEdit->setText(ToQt(values.SpecularMap));
}

void CEnvmapDialog::ReadInto(tools::MaterialCompile& values) const {
  values.MaskInNormalAlpha = m_ui->normalMaskCheck->isChecked();
  values.MaskInIllumAlpha = m_ui->illumMaskCheck->isChecked();
  values.MaskInBaseAlpha = m_ui->baseMaskCheck->isChecked();
  values.EnvMapContrast = FromQt(m_ui->contrastEdit->text());
  values.EnvMapTint = FromQt(m_ui->tintEdit->text());
  values.EnvMapSaturation = FromQt(m_ui->saturationEdit->text());
  values.SpecularMap = FromQt(m_ui->specularEdit->text());
}

void CEnvmapDialog::OnDropFiles(const platform::DroppedFiles& drop) {
  if (drop.IsOver(*m_ui->specularEdit)) m_ui->specularEdit->setText(ToQt(drop.Paths.front()));
}

}  // namespace tarnwick::pages

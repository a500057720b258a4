#include "pages/mat_dialog.h"

#include <QShortcut>
#include <QToolTip>
#include <utility>
#include <variant>

#include "core/paths.h"
#include "core/settings_table.h"
#include "jobs/compile_images.h"
#include "pages/file_chooser.h"
#include "pages/material_settings.h"
#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "platform/window_placing.h"
#include "project/model_options.h"
#include "ui_mat_dialog.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using platform::FromQt;
using platform::ToQt;

CMatDialog::CMatDialog(const PageContext& context, QWidget* parent)
    : CPage(context, parent),
      m_ui(std::make_unique<Ui::MatDialog>()),
      m_envmap(context.Desktop, this),
      m_status(context.Desktop, this, [this] { m_job.RequestStop(); }),
      m_job(*this) {
  m_ui->setupUi(this);
  connect(m_ui->modelPathRadio, &QAbstractButton::clicked, this, [this] { Options().modelPath = true; });
  connect(m_ui->mapPathRadio, &QAbstractButton::clicked, this, [this] { Options().modelPath = false; });
  connect(m_ui->normalCheck, &QAbstractButton::clicked, m_ui->normalEdit, &QWidget::setEnabled);
  connect(m_ui->normalCheck, &QAbstractButton::toggled, m_ui->browseNormalButton, &QWidget::setEnabled);
  connect(m_ui->glowCheck, &QAbstractButton::clicked, this, &CMatDialog::OnGlowMap);
  connect(m_ui->glowCheck, &QAbstractButton::toggled, m_ui->browseGlowButton, &QWidget::setEnabled);
  connect(m_ui->translucentCheck, &QAbstractButton::clicked, this, &CMatDialog::OnTranslucent);
  connect(m_ui->envmapCheck, &QAbstractButton::toggled, m_ui->envmapButton, &QWidget::setEnabled);
  connect(m_ui->envmapButton, &QAbstractButton::clicked, this, &CMatDialog::OnEnvMapSettings);
  connect(m_ui->directoryEdit, &QLineEdit::textChanged, this,
          [this](const QString& text) { emit MaterialDirectoryChanged(FromQt(text)); });
  connect(m_ui->browseNormalButton, &QAbstractButton::clicked, this,
          [this] { BrowseForMap(*this, *m_ui->normalEdit, "Name of Normal MAP TGA"); });
  connect(m_ui->browseGlowButton, &QAbstractButton::clicked, this,
          [this] { BrowseForMap(*this, *m_ui->glowEdit, "Name of Illum MAP TGA"); });
  connect(m_ui->addButton, &QAbstractButton::clicked, this, &CMatDialog::OnAdd);
  connect(m_ui->clearButton, &QAbstractButton::clicked, this, &CMatDialog::OnClear);
  connect(m_ui->clearAllButton, &QAbstractButton::clicked, m_ui->materialList, &QTreeWidget::clear);
  connect(m_ui->compileButton, &QAbstractButton::clicked, this, &CMatDialog::CompileMaterials);
  auto* removeKey = new QShortcut(QKeySequence::Delete, m_ui->materialList, nullptr, nullptr, Qt::WidgetShortcut);
  connect(removeKey, &QShortcut::activated, m_ui->materialList, &CMaterialList::RemoveSelected);
}

CMatDialog::~CMatDialog() = default;

void CMatDialog::OnInitDialog() {
  CPage::OnInitDialog();
  m_ui->materialList->InsertColumns();
  m_ui->materialList->ReadFamiliarOnly(setting::UncommonImageFormats.Read(Settings()) == 0);
  platform::LoadAllCaptionBitmaps(*this);
  m_ui->shaderCombo->addItems({"LightmappedGeneric", "UnlitGeneric", "VertexLitGeneric"});

  const tools::MaterialCompile kept = ReadMaterialSettings(Settings());
  m_ui->directoryEdit->setText(ToQt(kept.Directory));
  (kept.ModelPath ? m_ui->modelPathRadio : m_ui->mapPathRadio)->setChecked(true);
  m_ui->translucentCheck->setChecked(kept.Translucent);
  m_ui->glowCheck->setChecked(kept.HasGlowMap);
  m_ui->selfIllumTextureCheck->setChecked(kept.UseSelfIllumTexture);
  m_ui->normalCheck->setChecked(kept.HasNormalMap);
  m_ui->glowEdit->setEnabled(kept.HasGlowMap);
  m_ui->browseGlowButton->setEnabled(kept.HasGlowMap);
  m_ui->normalEdit->setEnabled(kept.HasNormalMap);
  m_ui->browseNormalButton->setEnabled(kept.HasNormalMap);
  m_ui->shaderCombo->setEditText(ToQt(kept.Shader));
  for (const std::string& path : kept.Images) {
    if (core::FileExists(path)) m_ui->materialList->AddFile(path);
  }
  m_ui->materialList->FitColumns();
  m_ui->normalEdit->setText(ToQt(kept.NormalMap));
  m_ui->glowEdit->setText(ToQt(kept.GlowMap));
  m_envmap.Create();
  m_ui->envmapCheck->setChecked(kept.EnvMap);
  m_ui->envmapButton->setEnabled(kept.EnvMap);
  m_envmap.Show(kept);
}

tools::MaterialCompile CMatDialog::Values() const {
  tools::MaterialCompile values;
  values.Images = m_ui->materialList->Files();
  values.Directory = FromQt(m_ui->directoryEdit->text());
  values.ModelPath = Options().modelPath;
  values.Shader = FromQt(m_ui->shaderCombo->currentText());
  values.Translucent = m_ui->translucentCheck->isChecked();
  values.HasNormalMap = m_ui->normalCheck->isChecked();
  values.NormalMap = FromQt(m_ui->normalEdit->text());
  values.HasGlowMap = m_ui->glowCheck->isChecked();
  values.GlowMap = FromQt(m_ui->glowEdit->text());
  values.UseSelfIllumTexture = m_ui->selfIllumTextureCheck->isChecked();
  values.EnvMap = m_ui->envmapCheck->isChecked();
  m_envmap.ReadInto(values);
  return values;
}

void CMatDialog::SaveSettings() {
  WriteMaterialSettings(Settings(), Values());
}

void CMatDialog::OnGlowMap() {
  const bool isOn = m_ui->glowCheck->isChecked();
  m_ui->glowEdit->setEnabled(isOn);
  if (isOn) m_ui->translucentCheck->setChecked(false);
}

void CMatDialog::OnTranslucent() {
  if (m_ui->translucentCheck->isChecked()) m_ui->glowCheck->setChecked(false);
}

void CMatDialog::OnEnvMapSettings() {
  platform::CenterOver(*this, m_envmap);
  m_envmap.show();
  m_envmap.activateWindow();
}

void CMatDialog::OnAdd() {
  const auto chosen =
      DesktopSeam().ChooseFilesToOpen(this, {.Title = "Name of TGA File",
                                             .Filter = "TGA/LST Files (*.tga,*lst)|*.tga;*.lst|All Supported "
                                                       "Files|*.tga;*.jpg;*.gif;*.bmp;*.png;*.dds|",
                                             .StartName = {},
                                             .StartDirectory = {}});
  if (!chosen) return;
  // Columns that a user has set stay; before the first row nobody has.
  const bool isFirst = m_ui->materialList->topLevelItemCount() == 0;
  for (const std::string& path : *chosen) m_ui->materialList->AddFile(path);
  if (isFirst) m_ui->materialList->FitColumns();
}

void CMatDialog::OnClear() {
  if (m_ui->materialList->selectedItems().isEmpty()) {
    return DesktopSeam().Box(this, platform::BoxIcon::Exclamation, "No items were selected!", "Warning");
  }
  m_ui->materialList->RemoveSelected();
}

void CMatDialog::OnDropFiles(const platform::DroppedFiles& drop) {
  if (drop.IsOver(*m_ui->normalEdit)) m_ui->normalEdit->setText(ToQt(drop.Paths.front()));
  if (drop.IsOver(*m_ui->glowEdit)) m_ui->glowEdit->setText(ToQt(drop.Paths.front()));
  CMaterialList& list = *m_ui->materialList;
  if (!drop.IsOver(list)) return;
  for (const std::string& path : drop.Paths) {
    if (!list.HasFile(path)) list.AddFile(path);
  }
  list.FitColumns();
  if (list.topLevelItemCount() > 0) list.scrollToItem(list.topLevelItem(list.topLevelItemCount() - 1));
}

bool CMatDialog::HasGame(const jobs::CompileImages& job) {
  const auto obstacle = jobs::ObstacleOf(job);
  if (!obstacle) return true;
  platform::MessageBoxRequest box{obstacle->Text + "\r\nMaterials are compiled for a game.", "Material Compile",
                                  platform::BoxIcon::Exclamation, platform::BoxButtons::OkCancel};
  box.OkLabel = "Configure";
  if (!Context().Configure) box.Buttons = platform::BoxButtons::Ok;
  if (DesktopSeam().ShowBox(this, box) == platform::BoxAnswer::Ok && Context().Configure) Context().Configure();
  return false;
}

void CMatDialog::CompileMaterials() {
  SaveSettings();
  m_status.Create();
  const jobs::CompileImages job{.Form = Values(),
                                .SdkDirectory = setting::SdkDirectory.Read(Settings()),
                                .GameDirectory = setting::GameDirectory.Read(Settings()),
                                .Start = {setting::WineProgram.Read(Settings())},
                                .UncommonFormats = setting::UncommonImageFormats.Read(Settings()) != 0};
  if (!HasGame(job)) return;
  m_status.Begin();
  m_outputDirectory = job.Form.Directory;
  m_job.Start([job](jobs::Host& host, const std::stop_token& stop) { jobs::Run(job, host, stop); },
              {.Bar = &m_status.Bar(), .Boxes = JobBoxes::Always, .OnEvent = [this](const jobs::Event& event) {
                 Show(event);
               }});
}

void CMatDialog::TellNoImages() {
  const QWidget& list = *m_ui->materialList;
  QToolTip::showText(list.mapToGlobal(list.rect().center()),
                     "There are no images in the list: add some, or drop them on it");
}

void CMatDialog::ToPageLog(const std::string& text) {
  if (Context().Log != nullptr) Context().Log->AppendPageLog(text);
}

void CMatDialog::Show(const jobs::Event& event) {
  std::visit(jobs::Overloaded{
                 [this](const jobs::Started& started) {
                   m_begun = true;
                   ToPageLog("Material Output Dir: " + m_outputDirectory + "\r\n");
                   if (started.Count == 0) return TellNoImages();
                   platform::CenterOver(*this, m_status);
                   m_status.show();
                 },
                 [this](const jobs::ItemStarted& started) { ToPageLog("Running VTEX on " + started.Input + "\r\n"); },
                 [this](const jobs::ItemFinished&) { ToPageLog("VTEX COMPLETED !\r\n"); },
                 [this](const jobs::Finished&) {
                   if (std::exchange(m_begun, false)) ToPageLog("\r\n");
                 },
                 [](const auto&) {},
             },
             event);
  m_status.Show(event);
}

}  // namespace tarnwick::pages

#include "pages/decompiler_dialog.h"

#include <QFileInfo>
#include <QScreen>
#include <algorithm>
#include <iterator>
#include <thread>
#include <variant>

#include "core/paths.h"
#include "core/settings_table.h"
#include "jobs/decompile_tree.h"
#include "jobs/verify_models.h"
#include "pages/path_offers.h"
#include "pages/recent_paths.h"
#include "pages/sources_view.h"
#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "platform/window_placing.h"
#include "settings/documents_folder.h"
#include "ui_decompiler_dialog.h"
#include "view/widget/model_viewer.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using platform::FromQt;
using platform::ToQt;

namespace {

// How CheckBoxSettings keeps the check boxes; the job's options have other values.
constexpr int32_t KeptUnweighted = 2;
constexpr int32_t KeptRotations = 4;

constexpr int FieldsWidth = 450;  // points of the fields beside the model, until somebody moves the bar between them
constexpr int WideScreen = 1100;  // points from which on a screen has room for the model beside the fields

bool IsFolder(const std::string& path) {
  return QFileInfo(ToQt(path)).isDir();
}

bool IsModelOrFolder(const std::string& path) {
  return core::LowerAscii(path).ends_with(".mdl") || IsFolder(path);
}

/// How the box names several models; it is never read back.
QString NamesOf(const std::vector<std::string>& paths) {
  QStringList names;
  for (const std::string& path : paths) names << ToQt(path);
  return names.join("; ");
}

}  // namespace

CDecompilerDialog::CDecompilerDialog(const PageContext& context, QWidget* parent)
    : CPage(context, parent),
      m_ui(std::make_unique<Ui::DecompilerDialog>()),
      m_viewer(new view::ModelViewer(context.Desktop, view::ModelViewer::Controls::Below)),
      m_sources(new SourcesView(context.Desktop)),
      m_status(
          context.Desktop, this, [this] { m_job.RequestStop(); }, [this] { OnVerify(); }),
      m_job(*this) {
  m_ui->setupUi(this);
  m_ui->sideTabs->addTab(m_viewer, "Model");
  m_ui->sideTabs->addTab(m_sources, "Sources");
  m_ui->splitter->setStretchFactor(1, 1);
  connect(m_ui->modelEdit, &QLineEdit::textChanged, this, &CDecompilerDialog::ShowModel);
  connect(m_ui->sideCheck, &QAbstractButton::toggled, this, &CDecompilerDialog::ShowSide);
  connect(m_ui->sideCheck, &QAbstractButton::clicked, this,
          [this](bool on) { setting::ModelPane.Write(Settings(), on ? 1 : 0); });
  connect(m_ui->splitter, &QSplitter::splitterMoved, this,
          [this](int position) { setting::ModelPanePosition.Write(Settings(), position); });
  connect(m_ui->browseModelButton, &QAbstractButton::clicked, this, &CDecompilerDialog::OnBrowseModel);
  connect(m_ui->browseOutputButton, &QAbstractButton::clicked, this, &CDecompilerDialog::OnBrowseOutput);
  // Sources that are compiled are kept apart; the plain form goes where the box says.
  connect(m_ui->readyCheck, &QAbstractButton::toggled, m_ui->physicsCheck, &QWidget::setEnabled);
  connect(m_ui->readyCheck, &QAbstractButton::toggled, m_ui->animationsCheck, &QWidget::setEnabled);
  connect(m_ui->readyCheck, &QAbstractButton::clicked, m_ui->ownFoldersCheck, &QAbstractButton::setChecked);
  connect(m_ui->extractButton, &QAbstractButton::clicked, this, &CDecompilerDialog::OnExtract);
  AddContentButton(*m_ui->browseModelButton, "&Game content...", archives::ContentKind::Model);
}

CDecompilerDialog::~CDecompilerDialog() = default;

void CDecompilerDialog::OnInitDialog() {
  CPage::OnInitDialog();
  m_ui->resultLabel->clear();
  m_status.Create();
  platform::LoadAllCaptionBitmaps(*this);
  m_ui->outputEdit->setText(ToQt(Settings().GetString(setting::OutputDirectory.Section, setting::OutputDirectory.Name,
                                                      settings::DocumentsFolder())));
  m_ui->modelEdit->setText(ToQt(setting::LastMdlFile.Read(Settings())));
  const int32_t boxes = setting::CheckBoxSettings.Read(Settings());
  m_ui->unweightedCheck->setChecked((boxes & KeptUnweighted) != 0);
  m_ui->rotationsCheck->setChecked((boxes & KeptRotations) != 0);
  m_ui->readyCheck->setChecked(setting::ReadyToCompile.Read(Settings()) != 0);
  m_ui->physicsCheck->setChecked(setting::ModelPhysics.Read(Settings()) != 0);
  m_ui->physicsCheck->setEnabled(m_ui->readyCheck->isChecked());
  m_ui->animationsCheck->setChecked(setting::ModelAnimations.Read(Settings()) != 0);
  m_ui->animationsCheck->setEnabled(m_ui->readyCheck->isChecked());
  m_ui->materialsCheck->setChecked(setting::ModelMaterials.Read(Settings()) != 0);
  m_ui->ownFoldersCheck->setChecked(setting::OwnModelFolders.Read(Settings()) != 0 && m_ui->readyCheck->isChecked());
  OfferRecentPaths();
  const int32_t side = setting::ModelPane.Read(Settings());
  const bool hasRoom = screen()->availableGeometry().width() >= WideScreen;
  m_ui->sideCheck->setChecked(side > 0 || (side < 0 && hasRoom));
  ShowSide(m_ui->sideCheck->isChecked());
}

void CDecompilerDialog::ShowSide(bool on) {
  m_ui->sideTabs->setVisible(on);
  if (!on) return;
  const int32_t position = setting::ModelPanePosition.Read(Settings());
  const int fields = position > 0 ? position : FieldsWidth;
  m_ui->splitter->setSizes({fields, std::max(m_ui->splitter->width() - fields, 1)});
  ShowModel();
}

void CDecompilerDialog::ShowModel() {
  if (!m_ui->sideCheck->isChecked()) return;
  const std::string path = Models().front();
  m_viewer->SetEmptyText(IsFolder(path) ? "A folder is named: all models in it are decompiled, and none is shown"
                                        : "The model that is named is shown here");
  m_viewer->ShowFile(IsFolder(path) ? QString() : ToQt(path), ToQt(setting::GameDirectory.Read(Settings())));
  m_ui->sideTabs->setCurrentWidget(m_viewer);
}

void CDecompilerDialog::TakeFiles(const jobs::Event& event) {
  if (std::holds_alternative<jobs::Started>(event)) m_sources->Clear();
  if (const auto* finished = std::get_if<jobs::ItemFinished>(&event); finished && !finished->Result.Files.empty()) {
    m_sources->SetGameDirectory(setting::GameDirectory.Read(Settings()));
    m_sources->Add(finished->Result.Source, finished->Result.Target, finished->Result.Files);
    m_ui->sideTabs->setCurrentWidget(m_sources);
  }
}

void CDecompilerDialog::OfferRecentPaths() {
  OfferPaths(*m_ui->modelEdit, RecentPaths(Settings(), setting::RecentModels));
  OfferPaths(*m_ui->outputEdit, RecentPaths(Settings(), setting::RecentDirectories));
}

void CDecompilerDialog::SetModels(const std::vector<std::string>& paths) {
  m_chosen = paths;
  m_ui->modelEdit->setText(NamesOf(paths));
  setting::LastMdlFile.Write(Settings(), paths.front());
}

std::vector<std::string> CDecompilerDialog::Models() const {
  const QString text = m_ui->modelEdit->text();
  return !m_chosen.empty() && text == NamesOf(m_chosen) ? m_chosen : std::vector<std::string>{FromQt(text)};
}

void CDecompilerDialog::SetOutputDirectory(const std::string& path) {
  m_ui->outputEdit->setText(ToQt(path));
  setting::OutputDirectory.Write(Settings(), path);
}

void CDecompilerDialog::OnBrowseModel() {
  const std::string last = setting::LastMdlFile.Read(Settings());
  m_ui->modelEdit->setText(ToQt(last));
  const auto chosen = DesktopSeam().ChooseFilesToOpen(
      this,
      {.Title = "Name of MDL File", .Filter = "MDL Files (*.mdl)|*.mdl|", .StartName = last, .StartDirectory = {}});
  if (chosen) {
    SetModels(*chosen);
  } else if (m_ui->modelEdit->text().isEmpty()) {
    DesktopSeam().Box(this, platform::BoxIcon::Exclamation, "No MDL File Selected!");
  }
}

void CDecompilerDialog::OnBrowseOutput() {
  const auto chosen = DesktopSeam().ChooseFolder(this, "Name of Output Directory", FromQt(m_ui->outputEdit->text()));
  if (chosen) {
    SetOutputDirectory(*chosen);
  } else if (m_ui->outputEdit->text().isEmpty()) {
    DesktopSeam().Box(this, platform::BoxIcon::Exclamation, "No Output Folder Selected!");
  }
}

void CDecompilerDialog::OnDropFiles(const platform::DroppedFiles& drop) {
  if (drop.IsOver(*m_ui->outputEdit)) {
    if (IsFolder(drop.Paths.front())) SetOutputDirectory(drop.Paths.front());
    return;
  }
  if (drop.IsOver(*m_ui->modelEdit) && !IsModelOrFolder(drop.Paths.front())) return SetModels({drop.Paths.front()});
  std::vector<std::string> models;
  std::copy_if(drop.Paths.begin(), drop.Paths.end(), std::back_inserter(models), IsModelOrFolder);
  if (!models.empty()) SetModels(models);
}

size_t CDecompilerDialog::OpenFiles(const std::vector<std::string>& paths) {
  std::vector<std::string> models;
  std::copy_if(paths.begin(), paths.end(), std::back_inserter(models), IsModelOrFolder);
  if (!models.empty()) SetModels(models);
  return models.size();
}

void CDecompilerDialog::OnExtract() {
  jobs::DecompileTree job;
  job.Inputs = Models();
  job.Content = NewContent();
  job.OutputDirectory = FromQt(m_ui->outputEdit->text());
  job.Recursive = true;
  job.OwnFolders = m_ui->ownFoldersCheck->isChecked();
  job.OneByOne = true;
  job.Threads = std::max(static_cast<int>(std::thread::hardware_concurrency()), 2);
  job.Options = 0;
  if (m_ui->materialsCheck->isChecked()) job.MaterialFormat = "tga";
  int32_t kept = 0;
  if (m_ui->unweightedCheck->isChecked()) {
    job.Options |= decompiler::DecompileOptionUnweightedSmd;
    kept |= KeptUnweighted;
  }
  if (m_ui->rotationsCheck->isChecked()) {
    job.Options |= decompiler::DecompileOptionKeepRotations;
    kept |= KeptRotations;
  }
  if (m_ui->readyCheck->isChecked()) job.Options |= decompiler::DecompileOptionReadyToCompile;
  if (!m_ui->physicsCheck->isChecked()) job.Options |= decompiler::DecompileOptionNoPhysics;
  if (!m_ui->animationsCheck->isChecked()) job.Options |= decompiler::DecompileOptionNoAnimations;
  setting::CheckBoxSettings.Write(Settings(), kept);
  setting::ReadyToCompile.Write(Settings(), m_ui->readyCheck->isChecked() ? 1 : 0);
  setting::ModelPhysics.Write(Settings(), m_ui->physicsCheck->isChecked() ? 1 : 0);
  setting::ModelAnimations.Write(Settings(), m_ui->animationsCheck->isChecked() ? 1 : 0);
  setting::ModelMaterials.Write(Settings(), m_ui->materialsCheck->isChecked() ? 1 : 0);
  setting::OwnModelFolders.Write(Settings(), job.OwnFolders ? 1 : 0);
  for (const std::string& path : job.Inputs) RememberPath(Settings(), setting::RecentModels, path);
  RememberPath(Settings(), setting::RecentDirectories, job.OutputDirectory);
  OfferRecentPaths();

  m_status.Begin(job.OutputDirectory);
  platform::CenterOver(*this, m_status);
  m_status.show();
  m_job.Start([job](jobs::Host& host, const std::stop_token& stop) { jobs::Run(job, host, stop); },
              {.Bar = &m_status.Bar(), .OnEvent = [this](const jobs::Event& event) {
                 m_status.Show(event);
                 TakeFiles(event);
               }});
}

void CDecompilerDialog::OnVerify() {
  if (m_job.IsRunning() || m_status.Models().empty()) return;
  const jobs::VerifyModels job{.Inputs = m_status.Models(), .Content = NewContent(), .Threads = 1};
  m_status.BeginVerifying();
  m_job.Start([job](jobs::Host& host, const std::stop_token& stop) { jobs::Run(job, host, stop); },
              {.Bar = &m_status.Bar(), .OnEvent = [this](const jobs::Event& event) { m_status.Show(event); }});
}

}  // namespace tarnwick::pages

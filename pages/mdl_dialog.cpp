#include "pages/mdl_dialog.h"

#include "core/paths.h"
#include "core/settings_table.h"
#include "pages/animation_dialog.h"
#include "pages/collision_help_dialog.h"
#include "pages/file_chooser.h"
#include "pages/help_dialogs.h"
#include "pages/model_options_dialog.h"
#include "pages/ref_smd_info.h"
#include "pages/studiomdl_run.h"
#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/look.h"
#include "platform/page_report.h"
#include "platform/text.h"
#include "platform/window_placing.h"
#include "project/field_rules.h"
#include "project/project_file.h"
#include "project/project_store.h"
#include "project/qc_generator.h"
#include "project/source_files.h"
#include "ui_mdl_dialog.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using platform::FromQt;
using platform::PageReport;
using platform::ToQt;

CMDLDialog::CMDLDialog(const PageContext& context, QWidget* parent)
    : CPage(context, parent),
      m_ui(std::make_unique<Ui::MdlDialog>()),
      m_project(context.Options),
      m_viewed(context.Desktop, context.Settings, *this, context.BrowseContentForWindow),
      m_status(context.Desktop, this),
      m_runner(*this, m_status.Controls()) {
  m_ui->setupUi(this);
  platform::ShowAsReadOnly(*m_ui->materialEdit);
  for (const std::string_view type : project::ModelTypes) m_ui->modelTypeCombo->addItem(ToQt(type));
  m_sequences = std::make_unique<RowList>(
      *this, RowListControls{m_ui->list, m_ui->addButton, m_ui->removeButton, m_ui->editButton},
      QStringList{"Name    ", "SMD File"},
      RowListEntries{.Count = [this] { return static_cast<int>(m_project.Sequences.Count()); },
                     .Texts =
                         [this](int row) {
                           const project::SequenceEntry& entry = m_project.Sequences.At(row);
                           return QStringList{ToQt(entry.name), ToQt(entry.smdFile)};
                         },
                     .Add = [this] { return AddSequence({}); },
                     .Edit = [this](int row) { EditSequence(row); },
                     .Remove = [this](int row) { m_project.Sequences.RemoveAt(row); }});
  ConnectButtons();
}

CMDLDialog::~CMDLDialog() = default;

void CMDLDialog::ConnectButtons() {
  const auto onClick = [this](QAbstractButton* button, auto handler) {
    connect(button, &QAbstractButton::clicked, this, handler);
  };
  onClick(m_ui->optionsButton, &CMDLDialog::OnModelOptions);
  onClick(m_ui->inspectButton, &CMDLDialog::OnInspect);
  onClick(m_ui->loadButton, &CMDLDialog::OnLoad);
  onClick(m_ui->saveButton, &CMDLDialog::OnSave);
  onClick(m_ui->viewButton, &CMDLDialog::OnView);
  onClick(m_ui->compileButton, &CMDLDialog::CompileModel);
  onClick(m_ui->browseReferenceButton, [this] { OnBrowseReference(); });
  onClick(m_ui->browseCollisionButton, [this] { OnBrowseCollision(); });
  onClick(m_ui->collisionHelpButton, [this] { CCollisionHelpDialog(DesktopSeam(), this).DoModal(); });
  onClick(m_ui->materialHelpButton, [this] { CMdlMatDialog(DesktopSeam(), this).DoModal(); });
  onClick(m_ui->referenceSequenceCheck, &CMDLDialog::FollowSequenceRule);
  onClick(m_ui->referenceCollisionCheck, &CMDLDialog::FollowCollisionCheck);
  connect(m_ui->modelTypeCombo, &QComboBox::activated, this, &CMDLDialog::FollowSequenceRule);
}

void CMDLDialog::OnInitDialog() {
  project::LoadFormFromSettings(Settings(), m_project);
  CPage::OnInitDialog();
  platform::LoadAllCaptionBitmaps(*this);
  m_sequences->Refresh();
  FollowSequenceRule();
  FollowCollisionCheck();
  UpdateData(true);  // the rule may have changed a check
  RememberAsSaved();
}

void CMDLDialog::DoDataExchange(platform::CDataExchange& exchange) {
  DDX_Text(exchange, *m_ui->modelFileEdit, m_project.modelFile);
  DDX_CBIndex(exchange, *m_ui->modelTypeCombo, m_project.propType);
  DDX_Text(exchange, *m_ui->referenceEdit, m_project.referenceSmd);
  DDX_Check(exchange, *m_ui->referenceSequenceCheck, m_project.useReferenceAsSequence);
  DDX_Check(exchange, *m_ui->referenceCollisionCheck, m_project.useReferenceAsCollision);
  DDX_Text(exchange, *m_ui->collisionEdit, m_project.collisionFile);
  DDX_Text(exchange, *m_ui->materialEdit, m_project.materialDirectory);
}

const project::ModelProject& CMDLDialog::Project() {
  UpdateData(true);
  return m_project;
}

void CMDLDialog::SetMaterialDirectory(const std::string& directory) {
  m_ui->materialEdit->setText(ToQt(directory));
}

void CMDLDialog::SaveSettings() {
  UpdateData(true);
  project::SaveProjectToStore(m_project, m_store, Settings());
}

void CMDLDialog::FollowSequenceRule() {
  const project::SequenceControls controls =
      project::SequenceControlsFor(m_ui->modelTypeCombo->currentIndex(), m_ui->referenceSequenceCheck->isChecked());
  m_ui->referenceSequenceCheck->setChecked(controls.UseReferenceChecked);
  m_ui->referenceSequenceCheck->setEnabled(controls.UseReferenceEnabled);
  for (QWidget* control :
       std::initializer_list<QWidget*>{m_ui->list, m_ui->addButton, m_ui->removeButton, m_ui->editButton}) {
    control->setEnabled(controls.ListEnabled);
  }
}

void CMDLDialog::FollowCollisionCheck() {
  const bool hasFile = !m_ui->referenceCollisionCheck->isChecked();
  m_ui->collisionEdit->setEnabled(hasFile);
  m_ui->browseCollisionButton->setEnabled(hasFile);
}

void CMDLDialog::OnBrowseReference() {
  BrowseForFile(*this, *m_ui->referenceEdit, "Name of Reference SMD File", "All Files (*.smd)|*.smd|");
}

void CMDLDialog::OnBrowseCollision() {
  BrowseForFile(*this, *m_ui->collisionEdit, "Name of Collision SMD or QC File",
                "HL2 Files (*.smd,*.qc, *.qci)|*.smd;*.qc;*.qci|");
}

void CMDLDialog::OnDropFiles(const platform::DroppedFiles& drop) {
  const std::string& path = drop.Paths.front();
  if (drop.IsOver(*m_ui->referenceEdit)) return m_ui->referenceEdit->setText(ToQt(path));
  if (drop.IsOver(*m_ui->list)) {
    // Once the drop is over: the program that the file comes from waits for its end, and the editor takes its time.
    QMetaObject::invokeMethod(
        this,
        [this, path] {
          if (AddSequence(path)) m_sequences->Refresh();
        },
        Qt::QueuedConnection);
    return;
  }
  if (drop.IsOver(*m_ui->collisionEdit)) m_ui->collisionEdit->setText(ToQt(path));
}

size_t CMDLDialog::OpenFiles(const std::vector<std::string>& paths) {
  const auto mesh = std::find_if(paths.begin(), paths.end(),
                                 [](const std::string& path) { return core::LowerAscii(path).ends_with(".smd"); });
  if (mesh == paths.end()) return 0;
  m_ui->referenceEdit->setText(ToQt(*mesh));
  return 1;
}

bool CMDLDialog::AddSequence(const std::string& smdFile) {
  project::SequenceEntry entry;
  entry.smdFile = smdFile;
  if (CAnimationDialog(DesktopSeam(), this, entry).DoModal() != Accepted) return false;
  m_project.Sequences.Add(entry);
  return true;
}

void CMDLDialog::EditSequence(int row) {
  CAnimationDialog(DesktopSeam(), this, m_project.Sequences.At(row)).DoModal();
}

void CMDLDialog::OnLoad() {
  UpdateData(true);
  const auto chosen = DesktopSeam().ChooseFileToOpen(this, {.Title = project::ProjectFileTitle,
                                                            .Filter = project::ProjectFileFilter,
                                                            .StartName = m_project.configFile,
                                                            .StartDirectory = {}});
  if (!chosen) return;
  if (HasUnsavedChanges() &&
      DesktopSeam().ShowBox(this, {"The project has changes that are in no file. Load the other one all the same?",
                                   project::ProjectFileTitle,
                                   platform::BoxIcon::Question,
                                   platform::BoxButtons::OkCancel,
                                   {},
                                   "Load",
                                   true}) != platform::BoxAnswer::Ok) {
    return;
  }
  PageReport report(DesktopSeam(), this);
  if (!project::OpenProjectFile(*chosen, m_project, m_store, report)) return;
  UpdateData(false);
  m_sequences->Refresh();
  FollowSequenceRule();
  FollowCollisionCheck();
  UpdateData(true);
  RememberAsSaved();
}

void CMDLDialog::OnSave() {
  SaveSettings();
  const auto chosen = DesktopSeam().ChooseFileToSave(this, {.Title = project::ProjectFileTitle,
                                                            .Filter = project::ProjectFileFilter,
                                                            .StartName = m_project.configFile,
                                                            .StartDirectory = {}});
  if (!chosen) return;
  PageReport report(DesktopSeam(), this);
  if (project::SaveProjectFile(*chosen, m_project, m_store, report)) RememberAsSaved();
}

void CMDLDialog::RememberAsSaved() {
  project::SaveProjectToStore(m_project, m_saved);
}

bool CMDLDialog::HasUnsavedChanges() const {
  project::ProfileStore now;
  project::SaveProjectToStore(m_project, now);
  return now.Entries() != m_saved.Entries();
}

void CMDLDialog::OnView() {
  UpdateData(true);
  m_viewed.View(m_project.modelFile);
}

void CMDLDialog::OnInspect() {
  CRefSMDInfo dialog(DesktopSeam(), this);
  dialog.SmdPath = FromQt(m_ui->referenceEdit->text());
  dialog.GameDirectory = setting::GameDirectory.Read(Settings());
  dialog.DoModal();
}

void CMDLDialog::OnModelOptions() {
  CModelOptionsDialog(Context(), this, m_project).DoModal();
}

void CMDLDialog::CompileModel() {
  if (m_runner.IsRunning()) return;
  UpdateData(true);
  PageReport report(DesktopSeam(), this);
  std::string qcPath;
  if (!project::GenerateQc(m_project, m_store, Settings(), report, qcPath)) return;
  auto job = PrepareStudiomdlRun(*this, Settings(), tools::ToolRun::StudiomdlForm, qcPath,
                                 static_cast<uint32_t>(m_project.options.studioMdlOptions));
  if (!job) return;
  job->Warnings = project::MissingSources(m_project);
  m_status.Create();
  platform::CenterOver(*this, m_status);
  m_status.show();
  m_status.Clear();
  m_runner.Start(*job, m_status.Log(), [this](const jobs::ItemResult& result) { m_viewed.ShowCompiled(result); });
}

}  // namespace tarnwick::pages

#include "pages/decompiler_dialog.h"

#include <QCompleter>
#include <QFileInfo>
#include <QStringListModel>
#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>

#include "core/paths.h"
#include "core/settings_table.h"
#include "decompiler/decompile_job.h"
#include "pages/recent_paths.h"
#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "platform/window_placing.h"
#include "settings/documents_folder.h"
#include "ui_decompiler_dialog.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using decompiler::DecompileProgress;
using platform::FromQt;
using platform::ToQt;

namespace {

// How CheckBoxSettings keeps the check boxes; the job's options have other values.
constexpr int32_t KeptUnweighted = 2;
constexpr int32_t KeptRotations = 4;

/// How far the job has got, passed from its thread to the window's.
class SharedProgress {
 public:
  void Set(const DecompileProgress& progress) {
    const std::lock_guard lock(m_mutex);
    m_progress = progress;
  }
  DecompileProgress Get() {
    const std::lock_guard lock(m_mutex);
    return m_progress;
  }

 private:
  std::mutex m_mutex;
  DecompileProgress m_progress;
};

bool IsModelFile(const std::string& path) {
  return core::LowerAscii(path).ends_with(".mdl");
}

void OfferPaths(QLineEdit& box, const std::vector<std::string>& paths) {
  QStringList offered;
  for (const std::string& path : paths) offered << ToQt(path);
  if (box.completer() == nullptr) {
    auto* completer = new QCompleter(&box);
    completer->setModel(new QStringListModel(completer));
    completer->setFilterMode(Qt::MatchContains);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    box.setCompleter(completer);
  }
  static_cast<QStringListModel*>(box.completer()->model())->setStringList(offered);
}

}  // namespace

CDecompilerDialog::CDecompilerDialog(const PageContext& context, QWidget* parent)
    : CPage(context, parent),
      m_ui(std::make_unique<Ui::DecompilerDialog>()),
      m_status(context.Desktop, this),
      m_jobs(*this) {
  m_ui->setupUi(this);
  connect(m_ui->browseModelButton, &QAbstractButton::clicked, this, &CDecompilerDialog::OnBrowseModel);
  connect(m_ui->browseOutputButton, &QAbstractButton::clicked, this, &CDecompilerDialog::OnBrowseOutput);
  connect(m_ui->extractButton, &QAbstractButton::clicked, this, &CDecompilerDialog::OnExtract);
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
  OfferRecentPaths();
}

void CDecompilerDialog::OfferRecentPaths() {
  OfferPaths(*m_ui->modelEdit, RecentPaths(Settings(), setting::RecentModels));
  OfferPaths(*m_ui->outputEdit, RecentPaths(Settings(), setting::RecentDirectories));
}

void CDecompilerDialog::SetModel(const std::string& path) {
  m_ui->modelEdit->setText(ToQt(path));
  setting::LastMdlFile.Write(Settings(), path);
}

void CDecompilerDialog::SetOutputDirectory(const std::string& path) {
  m_ui->outputEdit->setText(ToQt(path));
  setting::OutputDirectory.Write(Settings(), path);
}

void CDecompilerDialog::OnBrowseModel() {
  const std::string last = setting::LastMdlFile.Read(Settings());
  m_ui->modelEdit->setText(ToQt(last));
  const auto chosen = DesktopSeam().ChooseFileToOpen(
      this,
      {.Title = "Name of MDL File", .Filter = "MDL Files (*.mdl)|*.mdl|", .StartName = last, .StartDirectory = {}});
  if (chosen) {
    SetModel(*chosen);
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
  if (drop.IsOver(*m_ui->modelEdit)) return SetModel(drop.Paths.front());
  if (drop.IsOver(*m_ui->outputEdit)) {
    if (QFileInfo(ToQt(drop.Paths.front())).isDir()) SetOutputDirectory(drop.Paths.front());
    return;
  }
  for (const std::string& path : drop.Paths) {
    if (IsModelFile(path)) return SetModel(path);
  }
}

void CDecompilerDialog::OnExtract() {
  decompiler::DecompileJob job;
  job.ModelPath = FromQt(m_ui->modelEdit->text());
  job.OutputDirectory = FromQt(m_ui->outputEdit->text());
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
  setting::CheckBoxSettings.Write(Settings(), kept);
  setting::ReadyToCompile.Write(Settings(), m_ui->readyCheck->isChecked() ? 1 : 0);
  RememberPath(Settings(), setting::RecentModels, job.ModelPath);
  RememberPath(Settings(), setting::RecentDirectories, job.OutputDirectory);
  OfferRecentPaths();

  m_status.Begin(job.OutputDirectory);
  platform::CenterOver(*this, m_status);
  m_status.show();

  const auto progress = std::make_shared<SharedProgress>();
  const auto work = [job, progress](core::Report& report, const std::stop_token& stop) mutable {
    std::atomic<bool> stopRequested = false;
    const std::stop_callback onStop(stop, [&stopRequested] { stopRequested = true; });
    job.StopRequested = &stopRequested;
    job.Progress = [&progress](const DecompileProgress& now) { progress->Set(now); };
    core::WorkQueue helpers(static_cast<int>(std::max(std::thread::hardware_concurrency(), 2u)) - 1);
    job.Helpers = &helpers;
    decompiler::DecompileModel(job, report);
  };
  m_jobs.Start(work, {.Bar = &m_status.Bar(),
                      .LogGrew = [this](const std::string& text) { m_status.Append(text); },
                      .Tick = [this, progress] { m_status.ShowProgress(progress->Get()); },
                      .Done = [this, progress] { m_status.End(progress->Get()); }});
}

}  // namespace tarnwick::pages

#include "pages/qc_compile_dialog.h"

#include <algorithm>

#include "core/paths.h"
#include "core/settings_table.h"
#include "pages/file_chooser.h"
#include "pages/studiomdl_run.h"
#include "platform/bitmap_button.h"
#include "platform/dropped_files.h"
#include "platform/text.h"
#include "ui_qc_compile_dialog.h"

namespace tarnwick::pages {

namespace setting = core::setting;
using platform::FromQt;
using platform::ToQt;

CQCCompileDialog::CQCCompileDialog(const PageContext& context, QWidget* parent)
    : CPage(context, parent),
      m_ui(std::make_unique<Ui::QcCompileDialog>()),
      m_viewed(context.Desktop, context.Settings, *this) {
  m_ui->setupUi(this);
  m_runner =
      std::make_unique<ToolRunner>(*this, ToolRunControls{m_ui->progressBar, m_ui->stopButton, m_ui->copyCommandButton,
                                                          m_ui->wholeLogButton, m_ui->verdictLabel, m_ui->inputs});
  connect(m_ui->browseButton, &QAbstractButton::clicked, this, &CQCCompileDialog::OnBrowse);
  connect(m_ui->editButton, &QAbstractButton::clicked, this, &CQCCompileDialog::OnEdit);
  connect(m_ui->compileButton, &QAbstractButton::clicked, this, &CQCCompileDialog::OnCompile);
}

CQCCompileDialog::~CQCCompileDialog() = default;

void CQCCompileDialog::OnInitDialog() {
  CPage::OnInitDialog();
  platform::LoadAllCaptionBitmaps(*this);
  m_ui->qcFileEdit->setText(ToQt(setting::QcFile.Read(Settings())));
}

void CQCCompileDialog::SaveSettings() {
  setting::QcFile.Write(Settings(), FromQt(m_ui->qcFileEdit->text()));
}

void CQCCompileDialog::OnCompile() {
  m_outputText.clear();
  m_log.SetTarget(&m_outputText, [this] { m_ui->outputEdit->ShowText(m_outputText); });
  m_ui->outputEdit->Clear();
  const std::string qcPath = FromQt(m_ui->qcFileEdit->text());
  setting::QcFile.Write(Settings(), qcPath);
  const auto job = PrepareStudiomdlRun(*this, Settings(), tools::ToolRun::StudiomdlExistingQc, qcPath, 0);
  if (!job) return;
  m_runner->Start(*job, m_log, [this](const jobs::ItemResult& result) {
    m_log.AppendPageLog("\r\nStudioMDL Thread complete\r\n");
    m_viewed.ShowCompiled(result);
  });
}

void CQCCompileDialog::OnEdit() {
  const std::string file = FromQt(m_ui->qcFileEdit->text());
  platform::MessageBoxRequest box{"There is no file " + file, "Error", platform::BoxIcon::Stop};
  if (file.empty()) box.Text = "No QC file is named.";
  switch (DesktopSeam().Edit(file)) {
    case platform::EditStart::Begun:
      return;
    case platform::EditStart::NoFile:
      break;
    case platform::EditStart::NoEditor:
      box.Text = "No editor Association for the file type. \r\nPlease set one up in windows filemanager";
#ifndef _WIN32
      box.Details = "The environment variable VISUAL or EDITOR names the editor as well.";
#endif
      break;
  }
  DesktopSeam().ShowBox(this, box);
}

void CQCCompileDialog::OnBrowse() {
  BrowseForFile(*this, *m_ui->qcFileEdit, "Name of QC File", "All Files (*.qc)|*.qc|");
}

void CQCCompileDialog::OnDropFiles(const platform::DroppedFiles& drop) {
  if (m_ui->inputs->isEnabled() && drop.IsOver(*m_ui->qcFileEdit)) m_ui->qcFileEdit->setText(ToQt(drop.Paths.front()));
}

size_t CQCCompileDialog::OpenFiles(const std::vector<std::string>& paths) {
  const auto script = std::find_if(paths.begin(), paths.end(),
                                   [](const std::string& path) { return core::LowerAscii(path).ends_with(".qc"); });
  if (script == paths.end()) return 0;
  m_ui->qcFileEdit->setText(ToQt(*script));
  return 1;
}

}  // namespace tarnwick::pages

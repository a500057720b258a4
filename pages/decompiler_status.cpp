#include "pages/decompiler_status.h"

#include <QFileInfo>
#include <QHeaderView>
#include <QTreeWidget>
#include <algorithm>
#include <variant>

#include "core/paths.h"
#include "jobs/summary.h"
#include "platform/text.h"
#include "ui_decompiler_status.h"

namespace tarnwick::pages {

using platform::ToQt;

namespace {

constexpr int ModelColumn = 0;
constexpr int ResultColumn = 1;
constexpr int FolderRole = Qt::UserRole;

std::string FilesWritten(size_t count) {
  return jobs::Counted(count, "file") + " written";
}

int64_t LostIn(const jobs::ItemResult& result) {
  int64_t lost = 0;
  for (const decompiler::LostKind& kind : result.Lost) lost += kind.Count;
  return lost;
}

/// ", 3 things lost", or nothing.
std::string LostText(int64_t lost) {
  return lost > 0 ? ", " + jobs::Counted(static_cast<size_t>(lost), "thing") + " lost" : "";
}

/// A model by its file's name, with the folders in front that its sources have below `output`: models of one name in
/// several folders can be told apart.
std::string NameInList(const std::string& model, std::string_view target, std::string_view output) {
  constexpr std::string_view Separators = "/\\";
  std::string name(core::LastComponent(model));
  while (!output.empty() && Separators.find(output.back()) != std::string_view::npos) output.remove_suffix(1);
  if (!target.starts_with(output)) return name;
  std::string_view below = target.substr(output.size());
  if (below.empty() || Separators.find(below.front()) == std::string_view::npos) return name;
  below.remove_prefix(std::min(below.find_first_not_of(Separators), below.size()));  // "props/crate"
  return std::string(core::DirectoryWithSeparator(below)) + name;
}

/// ", 2 errors, 1 warning", or nothing.
std::string TroublesText(const jobs::ItemResult& result) {
  const size_t errors = result.Count(core::Severity::Error);
  const size_t warnings = result.Count(core::Severity::Warning);
  return (errors > 0 ? ", " + jobs::Counted(errors, "error") : "") +
         (warnings > 0 ? ", " + jobs::Counted(warnings, "warning") : "");
}

/// What the list says of a model that is done.
std::string ResultText(const jobs::ItemResult& result) {
  if (result.Judged == jobs::Verdict::Stopped) return "stopped";
  if (result.Verified) return result.Shown;
  if (result.Succeeded()) {
    return FilesWritten(result.Files.size()) + TroublesText(result) + LostText(LostIn(result));
  }
  const core::Trouble* error = result.First(core::Severity::Error);
  if (error == nullptr) return "failed";
  return "failed: " + error->Text + (error->Details.empty() ? "" : " (" + error->Details + ")");
}

/// A trouble as the log has it: on one line.
std::string LogLine(const core::Trouble& trouble) {
  const std::string told = trouble.Caption.empty() ? trouble.Text : trouble.Caption + ": " + trouble.Text;
  const std::string text = trouble.Details.empty() ? told : told + " (" + trouble.Details + ")";
  return platform::FromQt(ToQt(text).simplified()) + "\n";
}

/// "2 of 3 models come back the same, 1 but for rounding".
std::string VerifiedText(const jobs::JobResult& result) {
  const auto count = [&](auto is) {
    return static_cast<size_t>(
        std::count_if(result.Items.begin(), result.Items.end(),
                      [&](const jobs::ItemResult& item) { return item.Verified && is(*item.Verified); }));
  };
  const size_t same = count([](const jobs::Verification& one) { return one.IsSameButForRounding(); });
  const size_t exact = count([](const jobs::Verification& one) { return one.IsSame(); });
  std::string text = std::to_string(same) + " of " + jobs::Counted(result.Items.size(), "model") +
                     (same == 1 ? " comes back the same" : " come back the same");
  if (exact < same) text += ", " + std::to_string(same - exact) + " but for rounding or what no source holds";
  return text;
}

}  // namespace

CDecompilerStatus::CDecompilerStatus(platform::Desktop& desktop, QWidget* parent, std::function<void()> stop,
                                     std::function<void()> verify)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::DecompilerStatus>()) {
  m_ui->setupUi(this);
  connect(m_ui->okButton, &QAbstractButton::clicked, this, &QDialog::accept);
  connect(m_ui->openFolderButton, &QAbstractButton::clicked, this, [this] { OpenFolder(m_folder); });
  connect(m_ui->stopButton, &QAbstractButton::clicked, this, [this, stop = std::move(stop)] {
    m_ui->stopButton->setEnabled(false);
    stop();
  });
  connect(m_ui->verifyButton, &QAbstractButton::clicked, this, [verify = std::move(verify)] { verify(); });
  connect(m_ui->resultList, &QTreeWidget::itemActivated, this, [this](const QTreeWidgetItem* row) {
    OpenFolder(platform::FromQt(row->data(ModelColumn, FolderRole).toString()));
  });
  m_ui->resultList->header()->setSectionResizeMode(ModelColumn, QHeaderView::ResizeToContents);
}

CDecompilerStatus::~CDecompilerStatus() = default;

QProgressBar& CDecompilerStatus::Bar() const {
  return *m_ui->progressBar;
}

void CDecompilerStatus::Begin(const std::string& outputDirectory) {
  m_folder = outputDirectory;
  m_models.clear();
  m_folders.clear();
  m_isVerifying = false;
  m_ui->verifyButton->setEnabled(false);
  m_count = m_modelsDone = m_filesDone = 0;
  m_lost = 0;
  m_ui->logEdit->Clear();
  m_ui->resultList->clear();
  m_ui->resultList->hide();
  m_ui->fileLabel->setText("Looking for models");
  m_ui->stopButton->setEnabled(true);
}

void CDecompilerStatus::BeginVerifying() {
  m_isVerifying = true;
  m_count = m_modelsDone = m_filesDone = 0;
  m_ui->resultList->clear();
  m_ui->verifyButton->setEnabled(false);
  m_ui->stopButton->setEnabled(true);
  m_ui->logEdit->Append("\n");
}

void CDecompilerStatus::Show(const jobs::Event& event) {
  std::visit(jobs::Overloaded{
                 [this](const jobs::Started& started) { OnStarted(started); },
                 [this](const jobs::ItemStarted& started) { OnModelStarted(started); },
                 [this](const jobs::Line& line) { m_ui->logEdit->Append(line.Text); },
                 [this](const jobs::Told& told) {
                   // A trouble with a box has no line of its own; neither has one of the job as a whole.
                   if (!told.Trouble.Caption.empty() || told.Item == jobs::NoItem) {
                     m_ui->logEdit->Append(LogLine(told.Trouble));
                   }
                 },
                 [this](const jobs::Progress& progress) { OnProgress(progress); },
                 [this](const jobs::ItemFinished& finished) { OnModelFinished(finished); },
                 [this](const jobs::Finished& finished) { OnFinished(finished.Result); },
             },
             event);
}

void CDecompilerStatus::OnStarted(const jobs::Started& started) {
  m_count = started.Count;
  m_ui->resultList->setVisible(m_count > 1);
}

void CDecompilerStatus::OnModelStarted(const jobs::ItemStarted& started) {
  if (m_count == 1 && !m_isVerifying) m_folder = started.Target;
  m_ui->fileLabel->setText(m_isVerifying ? "Verifying the model" : "Loading the model");
  auto* row = new QTreeWidgetItem(m_ui->resultList);
  // Also while a model is verified its row leads to the sources that were made of it.
  const std::string target = m_isVerifying ? m_folders[started.Input] : started.Target;
  row->setText(ModelColumn, ToQt(NameInList(started.Input, target, m_folder)));
  row->setToolTip(ModelColumn, ToQt(started.Input));
  row->setText(ResultColumn, m_isVerifying ? "verifying" : "decompiling");
  row->setData(ModelColumn, FolderRole, ToQt(target));
  m_ui->resultList->scrollToItem(row);
}

void CDecompilerStatus::OnProgress(const jobs::Progress& progress) {
  if (progress.Begun == 0) return;
  if (m_isVerifying) return m_ui->fileLabel->setText(ToQt("Verifying the model: " + progress.File));
  std::string text = FilesWritten(m_filesDone + progress.Done) + ", writing " + progress.File;
  if (m_count > 1) text = std::to_string(m_modelsDone) + " of " + jobs::Counted(m_count, "model") + ", " + text;
  m_ui->fileLabel->setText(ToQt(text));
}

void CDecompilerStatus::OnModelFinished(const jobs::ItemFinished& finished) {
  ++m_modelsDone;
  const jobs::ItemResult& result = finished.Result;
  if (m_isVerifying) {
    const core::Trouble* error = result.First(core::Severity::Error);
    const bool isTold = result.Verified || error == nullptr;
    m_ui->logEdit->Append(result.Input + ": " + (isTold ? ResultText(result) : error->Text) + "\n");
  } else if (!result.Files.empty()) {
    m_models.push_back(result.Source);
    m_folders[result.Source] = result.Target;
  }
  m_filesDone += finished.Result.Files.size();
  QTreeWidgetItem* row = m_ui->resultList->topLevelItem(m_ui->resultList->topLevelItemCount() - 1);
  const QString text = ToQt(ResultText(finished.Result)).simplified();
  if (!m_isVerifying && !result.Succeeded()) {  // the last line tells which model it was, also among many
    m_ui->logEdit->Append(platform::FromQt(row->text(ModelColumn) + ": " + text) + "\n");
  }
  row->setText(ResultColumn, text);
  row->setToolTip(ResultColumn, text);
  for (const decompiler::LostKind& lost : finished.Result.Lost) {
    auto* kind = new QTreeWidgetItem(row, {"lost", ToQt(lost.Kind + ": " + std::to_string(lost.Count))});
    kind->setData(ModelColumn, FolderRole, row->data(ModelColumn, FolderRole));
  }
  m_lost += LostIn(finished.Result);
  // What was lost of the only model stands in the list too, open.
  if (m_count == 1 && row->childCount() > 0) {
    row->setExpanded(true);
    m_ui->resultList->show();
  }
}

void CDecompilerStatus::OnFinished(const jobs::JobResult& result) {
  m_ui->stopButton->setEnabled(false);
  m_ui->verifyButton->setEnabled(!m_models.empty());
  if (m_isVerifying) return m_ui->fileLabel->setText(ToQt(VerifiedText(result)));
  std::string text = jobs::SummaryLine(result, "model");
  if (m_count == 1 && result.Items.size() == 1) text = FilesWritten(m_filesDone) + TroublesText(result.Items.front());
  text += LostText(m_lost);
  if (m_count == 0 && !result.Troubles.empty()) text = result.Troubles.front().Text;
  m_ui->fileLabel->setText(ToQt(text));
}

void CDecompilerStatus::OpenFolder(const std::string& folder) {
  // A model of which nothing was written has no folder of its own: then the one above it.
  QFileInfo there(ToQt(folder));
  while (!there.isDir() && there.path() != there.filePath()) there.setFile(there.path());
  if (DesktopSeam().Open(platform::FromQt(there.filePath()))) return;
  DesktopSeam().Box(this, platform::BoxIcon::Stop, "Unable to open the folder " + folder, "Error");
}

}  // namespace tarnwick::pages

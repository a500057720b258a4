#include "pages/decompiler_status.h"

#include <QScrollBar>

#include "platform/text.h"
#include "ui_decompiler_status.h"

namespace tarnwick::pages {

namespace {

QString FilesWritten(int count) {
  return count == 1 ? "1 file written" : QString("%1 files written").arg(count);
}

}  // namespace

CDecompilerStatus::CDecompilerStatus(platform::Desktop& desktop, QWidget* parent)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::DecompilerStatus>()) {
  m_ui->setupUi(this);
  connect(m_ui->okButton, &QAbstractButton::clicked, this, &QDialog::accept);
  connect(m_ui->openFolderButton, &QAbstractButton::clicked, this, &CDecompilerStatus::OnOpenFolder);
}

CDecompilerStatus::~CDecompilerStatus() = default;

QProgressBar& CDecompilerStatus::Bar() const {
  return *m_ui->progressBar;
}

void CDecompilerStatus::Begin(const std::string& outputDirectory) {
  m_outputDirectory = outputDirectory;
  m_ui->logEdit->clear();
  m_ui->fileLabel->setText("Loading the model");
}

void CDecompilerStatus::Append(const std::string& text) {
  QScrollBar& scroll = *m_ui->logEdit->verticalScrollBar();
  const bool followsEnd = scroll.value() == scroll.maximum();
  QTextCursor end(m_ui->logEdit->document());
  end.movePosition(QTextCursor::End);
  end.insertText(platform::ToQt(text).remove('\r'));
  if (followsEnd) scroll.setValue(scroll.maximum());
}

/// A file's path as it stands below the output directory, which is too long to be shown each time.
QString CDecompilerStatus::BelowOutput(const std::string& path) const {
  if (!path.starts_with(m_outputDirectory)) return platform::ToQt(path);
  const size_t name = path.find_first_not_of("/\\", m_outputDirectory.size());
  return name == std::string::npos ? platform::ToQt(path) : platform::ToQt(path.substr(name));
}

void CDecompilerStatus::ShowProgress(const decompiler::DecompileProgress& progress) {
  if (progress.FilesBegun == 0) return;
  m_ui->fileLabel->setText(QString("%1, writing %2").arg(FilesWritten(progress.FilesDone), BelowOutput(progress.File)));
}

void CDecompilerStatus::End(const decompiler::DecompileProgress& progress) {
  m_ui->fileLabel->setText(FilesWritten(progress.FilesDone));
}

void CDecompilerStatus::OnOpenFolder() {
  if (DesktopSeam().Open(m_outputDirectory)) return;
  DesktopSeam().Box(this, platform::BoxIcon::Stop, "Unable to open the folder " + m_outputDirectory, "Error");
}

}  // namespace tarnwick::pages

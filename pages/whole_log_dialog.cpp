#include "pages/whole_log_dialog.h"

#include <QScrollBar>

#include "core/output_file.h"
#include "platform/text.h"
#include "ui_whole_log_dialog.h"

namespace tarnwick::pages {

namespace {

// A text box takes many times the memory of its text, and a person reads no more than this.
constexpr size_t ShownBytes = size_t{4} << 20;
constexpr int ShownLines = 200'000;

}  // namespace

CWholeLogDialog::CWholeLogDialog(platform::Desktop& desktop, QWidget* parent, const std::string& commandLine,
                                 const tools::WholeLog& log, const std::string& firstError)
    : CDialog(desktop, parent),
      m_ui(std::make_unique<Ui::WholeLogDialog>()),
      m_commandLine(commandLine),
      m_firstError(firstError),
      m_log(log) {
  m_ui->setupUi(this);
  connect(m_ui->saveButton, &QAbstractButton::clicked, this, &CWholeLogDialog::OnSave);
  connect(m_ui->okButton, &QAbstractButton::clicked, this, &QDialog::accept);
}

void CWholeLogDialog::OnInitDialog() {
  CDialog::OnInitDialog();
  tools::WholeLog shown(ShownBytes);
  shown.Append(m_log.Text());
  QPlainTextEdit& box = *m_ui->outputEdit;
  m_ui->outputEdit->KeepLines(ShownLines);
  m_ui->outputEdit->ShowText(m_commandLine + "\r\n" + shown.Text());
  QString note =
      m_log.Size() > ShownBytes ? "Only the beginning and the end are shown here; a saved file has more." : "";
  box.moveCursor(QTextCursor::Start);
  box.verticalScrollBar()->setValue(0);
  const QString error = platform::ToQt(m_firstError);
  const QTextCursor place =
      error.isEmpty() ? QTextCursor() : box.document()->find(error, 0, QTextDocument::FindCaseSensitively);
  if (!place.isNull()) {
    box.setTextCursor(place);
    box.centerCursor();
  } else if (!error.isEmpty()) {
    note += "\nThe first error is in the part left out: " + error;
  }
  m_ui->noteLabel->setTextFormat(Qt::PlainText);
  m_ui->noteLabel->setWordWrap(true);
  m_ui->noteLabel->setText(note.trimmed());
  m_ui->noteLabel->setVisible(!note.isEmpty());
}

void CWholeLogDialog::Grow(std::string_view text) {
  m_ui->outputEdit->Append(text);
}

CWholeLogDialog::~CWholeLogDialog() = default;

void CWholeLogDialog::OnSave() {
  const auto path = DesktopSeam().ChooseFileToSave(this, {.Title = "Name of Log File",
                                                          .Filter = "Text Files (*.txt)|*.txt|",
                                                          .StartName = "log.txt",
                                                          .StartDirectory = {}});
  if (!path) return;
  std::string reason;
  auto file = core::OutputFile::Create(*path, &reason);
  if (file) {
    file->Write(m_commandLine + "\r\n" + m_log.Text());
    if (file->Commit()) return;
    reason = file->Error();
  }
  DesktopSeam().Box(this, platform::BoxIcon::Stop, "Unable to write " + *path + ": " + reason, "Error");
}

}  // namespace tarnwick::pages

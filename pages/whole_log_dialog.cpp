#include "pages/whole_log_dialog.h"

#include <QScrollBar>

#include "core/output_file.h"
#include "ui_whole_log_dialog.h"

namespace tarnwick::pages {

namespace {

// A text box takes many times the memory of its text, and a person reads no more than this.
constexpr size_t ShownBytes = size_t{4} << 20;

}  // namespace

CWholeLogDialog::CWholeLogDialog(platform::Desktop& desktop, QWidget* parent, const std::string& commandLine,
                                 const tools::WholeLog& log)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::WholeLogDialog>()), m_commandLine(commandLine), m_log(log) {
  m_ui->setupUi(this);
  tools::WholeLog shown(ShownBytes);
  shown.Append(m_log.Text());
  m_ui->outputEdit->ShowText(m_commandLine + "\r\n" + shown.Text());
  m_ui->outputEdit->verticalScrollBar()->setValue(0);
  m_ui->noteLabel->setVisible(m_log.Size() > ShownBytes);
  m_ui->noteLabel->setText("Only the beginning and the end are shown here; a saved file has more.");
  connect(m_ui->saveButton, &QAbstractButton::clicked, this, &CWholeLogDialog::OnSave);
  connect(m_ui->okButton, &QAbstractButton::clicked, this, &QDialog::accept);
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

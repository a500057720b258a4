#include "pages/vtex_status_dialog.h"

#include <QSignalBlocker>
#include <variant>

#include "core/paths.h"
#include "platform/text.h"
#include "ui_vtex_status_dialog.h"

namespace tarnwick::pages {

using platform::ToQt;

namespace {

/// What the list of materials says behind the name of one that is done.
QString Mark(const jobs::ItemResult& result) {
  if (result.Judged == jobs::Verdict::Stopped) return " (stopped)";
  return result.Succeeded() ? "" : " (failed)";
}

}  // namespace

CVtexStatusDialog::CVtexStatusDialog(platform::Desktop& desktop, QWidget* parent, std::function<void()> stop)
    : CDialog(desktop, parent), m_ui(std::make_unique<Ui::VtexStatusDialog>()) {
  m_ui->setupUi(this);
  connect(m_ui->okButton, &QAbstractButton::clicked, this, &QDialog::accept);
  connect(m_ui->stopButton, &QAbstractButton::clicked, this, std::move(stop));
  connect(m_ui->materialCombo, &QComboBox::currentIndexChanged, this, &CVtexStatusDialog::ShowLog);
  connect(m_ui->wholeLogButton, &QAbstractButton::toggled, this, &CVtexStatusDialog::ShowLog);
}

CVtexStatusDialog::~CVtexStatusDialog() = default;

QProgressBar& CVtexStatusDialog::Bar() const {
  return *m_ui->progressBar;
}

void CVtexStatusDialog::Begin() {
  m_logs.clear();
  m_count = m_done = 0;
  m_note.clear();
  m_ui->materialCombo->clear();
  m_ui->logEdit->Clear();
  m_ui->countBar->setRange(0, 1);
  m_ui->countBar->setValue(0);
  m_ui->stateLabel->setText("Converting");
  m_ui->stopButton->setEnabled(true);
}

void CVtexStatusDialog::Show(const jobs::Event& event) {
  std::visit(jobs::Overloaded{
                 [this](const jobs::Started& started) {
                   m_count = started.Count;
                   m_ui->countBar->setRange(0, static_cast<int>(m_count));
                 },
                 [this](const jobs::ItemStarted& started) { OnItemStarted(started); },
                 [this](const jobs::Line& line) { OnLine(line); },
                 [this](const jobs::ItemFinished& finished) { OnItemFinished(finished); },
                 [this](const jobs::Finished& finished) { OnFinished(finished.Result); },
                 [](const auto&) {},
             },
             event);
}

bool CVtexStatusDialog::IsLastShown() const {
  return m_ui->materialCombo->currentIndex() == static_cast<int>(m_logs.size()) - 1;
}

void CVtexStatusDialog::OnItemStarted(const jobs::ItemStarted& started) {
  const bool follows = IsLastShown();  // whoever looks at an earlier one goes on reading
  m_ui->stateLabel->setText(QString("Material %1 of %2").arg(started.Item + 1).arg(m_count) + m_note);
  m_logs.emplace_back();
  const QSignalBlocker quiet(m_ui->materialCombo);
  m_ui->materialCombo->addItem(ToQt(core::LastComponent(started.Input)));
  const int row = m_ui->materialCombo->count() - 1;
  m_ui->materialCombo->setItemData(row, ToQt(started.Input), Qt::ToolTipRole);
  if (!follows && row != 0) return;
  m_ui->materialCombo->setCurrentIndex(row);
  ShowLog();
}

void CVtexStatusDialog::OnLine(const jobs::Line& line) {
  if (line.Item == jobs::NoItem) {
    m_note = " - " + ToQt(line.Text).trimmed();
    return;
  }
  m_logs.back().Whole.Append(line.Text);
  if (IsLastShown()) m_ui->logEdit->Append(line.Text);
}

void CVtexStatusDialog::OnItemFinished(const jobs::ItemFinished& finished) {
  MaterialLog& log = m_logs.back();
  log.Shown = finished.Result.Shown;
  log.Whole.Append(finished.Result.Notes);
  log.IsDone = true;
  m_ui->countBar->setValue(static_cast<int>(++m_done));
  const int row = static_cast<int>(m_logs.size()) - 1;
  m_ui->materialCombo->setItemText(row, m_ui->materialCombo->itemText(row) + Mark(finished.Result));
  const core::Trouble* error = finished.Result.First(core::Severity::Error);
  // What has no box of its own stands behind the tool's text.
  if (error != nullptr && error->Caption.empty() && log.Shown.find(error->Text) == std::string::npos) {
    const std::string told = "\r\n[" + error->Text + "]\r\n";
    log.Shown += told;
    log.Whole.Append(told);
  }
  if (IsLastShown()) ShowLog();
}

void CVtexStatusDialog::OnFinished(const jobs::JobResult& result) {
  m_ui->stopButton->setEnabled(false);
  QString text = QString("%1 of %2 compiled").arg(result.Count(jobs::Verdict::Succeeded)).arg(result.Items.size());
  if (const size_t failed = result.Count(jobs::Verdict::Failed); failed != 0)
    text += QString(", %1 failed").arg(failed);
  if (const size_t stopped = result.Count(jobs::Verdict::Stopped); stopped != 0) {
    text += QString(", %1 stopped").arg(stopped);
  }
  m_ui->stateLabel->setText(text + m_note);
}

void CVtexStatusDialog::ShowLog() {
  m_ui->logEdit->Clear();
  const int row = m_ui->materialCombo->currentIndex();
  if (row < 0) return;
  const MaterialLog& log = m_logs[static_cast<size_t>(row)];
  m_ui->logEdit->Append(m_ui->wholeLogButton->isChecked() || !log.IsDone ? log.Whole.Text() : log.Shown);
}

}  // namespace tarnwick::pages

#include "pages/vtex_status_dialog.h"

#include <QScrollBar>

#include "core/paths.h"
#include "platform/text.h"
#include "ui_vtex_status_dialog.h"

namespace tarnwick::pages {

using platform::ToQt;

namespace {

QString ShownText(const std::string& text) {
  return ToQt(text).remove('\r');
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
  m_count = m_done = m_failed = 0;
  m_ui->materialCombo->clear();
  m_ui->logEdit->clear();
  m_ui->countBar->setRange(0, 1);
  m_ui->countBar->setValue(0);
  m_ui->stateLabel->setText("Converting");
  m_ui->stopButton->setEnabled(true);
}

void CVtexStatusDialog::Show(const JobEvent<MaterialOutcome>& event) {
  using Kind = JobEvent<MaterialOutcome>::Kind;
  const int shown = m_ui->materialCombo->currentIndex();
  if (event.Told == Kind::Started) {
    m_count = event.Count;
    m_ui->countBar->setRange(0, static_cast<int>(m_count));
    m_ui->stateLabel->setText(QString("Material %1 of %2").arg(event.Index + 1).arg(m_count));
    m_logs.emplace_back();
    const QString name = ToQt(core::LastComponent(event.Text));
    m_ui->materialCombo->addItem(name);
    m_ui->materialCombo->setItemData(m_ui->materialCombo->count() - 1, ToQt(event.Text), Qt::ToolTipRole);
    // Whoever looks at an earlier one goes on reading.
    if (shown == m_ui->materialCombo->count() - 2) m_ui->materialCombo->setCurrentIndex(shown + 1);
    return;
  }
  const bool isShown = shown == static_cast<int>(m_logs.size()) - 1;
  if (event.Told == Kind::Text) {
    m_logs.back().Shown += ShownText(event.Text);
  } else {
    m_logs.back() = {ShownText(event.Text), ShownText(event.What.WholeLog)};
    m_ui->countBar->setValue(static_cast<int>(++m_done));
    if (!event.What.Succeeded) {
      ++m_failed;
      const int row = static_cast<int>(m_logs.size()) - 1;
      m_ui->materialCombo->setItemText(row, m_ui->materialCombo->itemText(row) + " (failed)");
    }
  }
  if (!isShown) return;
  ShowLog();
  m_ui->logEdit->verticalScrollBar()->setValue(m_ui->logEdit->verticalScrollBar()->maximum());
}

void CVtexStatusDialog::End() {
  m_ui->stopButton->setEnabled(false);
  QString text = QString("%1 of %2 compiled").arg(m_done - m_failed).arg(m_count);
  if (m_failed != 0) text += QString(", %1 failed").arg(m_failed);
  m_ui->stateLabel->setText(text);
}

void CVtexStatusDialog::ShowLog() {
  const int row = m_ui->materialCombo->currentIndex();
  const MaterialLog log = row < 0 ? MaterialLog() : m_logs[static_cast<size_t>(row)];
  const bool wantsWhole = m_ui->wholeLogButton->isChecked() && !log.Whole.isEmpty();
  m_ui->logEdit->setPlainText(wantsWhole ? log.Whole : log.Shown);
}

}  // namespace tarnwick::pages

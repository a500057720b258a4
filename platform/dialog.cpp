#include "platform/dialog.h"

#include <QApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QPushButton>

#include "platform/dropped_files.h"

namespace tarnwick::platform {

CDialog::CDialog(Desktop& desktop, QWidget* parent, Style style) : QDialog(parent), m_desktop(desktop), m_style(style) {
  if (style == Style::Page) setWindowFlags(Qt::Widget);
}

CDialog::~CDialog() = default;

int CDialog::DoModal() {
  m_created = true;
  OnInitDialog();
  return exec();
}

void CDialog::Create() {
  if (m_created) return;
  m_created = true;
  OnInitDialog();
}

void CDialog::EndDialog(int result) {
  done(result);
}

void CDialog::AcceptFiles() {
  if (m_acceptsFiles) return;
  m_acceptsFiles = true;
  setAcceptDrops(true);
  // Edit boxes take a dropped file as text of their own accord; the filter sees the drop before they do.
  qApp->installEventFilter(this);
}

void CDialog::OnDropFiles(const DroppedFiles&) {}

void CDialog::UpdateData(bool save) {
  CDataExchange exchange{save};
  DoDataExchange(exchange);
}

CDialog* CDialog::Of(const QWidget* widget) {
  for (; widget != nullptr; widget = widget->parentWidget()) {
    if (const auto* dialog = qobject_cast<const CDialog*>(widget)) return const_cast<CDialog*>(dialog);
  }
  return nullptr;
}

void CDialog::OnInitDialog() {
  UpdateData(false);
}

void CDialog::DoDataExchange(CDataExchange&) {}

void CDialog::OnOK() {
  UpdateData(true);
  EndDialog(Accepted);
}

void CDialog::OnCancel() {
  EndDialog(Rejected);
}

bool CDialog::eventFilter(QObject* watched, QEvent* event) {
  const QEvent::Type type = event->type();
  if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) {
    return QDialog::eventFilter(watched, event);
  }
  const auto* widget = qobject_cast<QWidget*>(watched);
  if (widget == nullptr || widget->window() != this) return false;
  auto* drop = static_cast<QDropEvent*>(event);
  DroppedFiles files = FilesOf(*drop->mimeData());
  if (files.Paths.empty()) return false;
  drop->setDropAction(Qt::CopyAction);
  drop->accept();
  if (type == QEvent::Drop) {
    files.Point = widget->mapToGlobal(drop->position().toPoint());
    OnDropFiles(files);
  }
  return true;
}

void CDialog::keyPressEvent(QKeyEvent* event) {
  if (m_style == Style::Window) return QDialog::keyPressEvent(event);
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!isEnter) return event->ignore();  // also Esc, which QDialog would take as leave to hide the page
  // Enter presses the page's own default button. Without one it must not reach the window's, which has nothing to do
  // with what was typed here.
  for (QPushButton* button : findChildren<QPushButton*>()) {
    if (button->isDefault() && button->isVisible() && button->isEnabled() && CDialog::Of(button) == this) {
      button->click();
      break;
    }
  }
  event->accept();
}

}  // namespace tarnwick::platform

#include "platform/dialog.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

#include "platform/dropped_files.h"
#include "platform/tab_order.h"
#include "platform/window_placing.h"

namespace tarnwick::platform {

namespace {

/// The letter of a group box leads to the group's first field; Qt goes to what had the focus in the group last, which
/// may be the button beside the field. False if `watched` is no such box.
bool FocusGroup(QObject* watched) {
  auto* group = qobject_cast<QGroupBox*>(watched);
  QWidget* field = group == nullptr || group->isCheckable() ? nullptr : FirstField(*group);
  if (field == nullptr) return false;
  field->setFocus(Qt::ShortcutFocusReason);
  // As when it comes from elsewhere: what is typed next replaces the text.
  if (auto* line = qobject_cast<QLineEdit*>(field)) line->selectAll();
  BringIntoSight(*field);
  return true;
}

}  // namespace

CDialog::CDialog(Desktop& desktop, QWidget* parent, Style style) : QDialog(parent), m_desktop(desktop), m_style(style) {
  if (style == Style::Page) setWindowFlags(Qt::Widget);
}

CDialog::~CDialog() = default;

int CDialog::DoModal() {
  m_created = true;
  OnInitDialog();
  Prepare();
  return exec();
}

void CDialog::Create() {
  if (m_created) return;
  m_created = true;
  OnInitDialog();
  Prepare();
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
  if (type == QEvent::Shortcut) return FocusGroup(watched);
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
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!isEnter && m_style == Style::Window) return QDialog::keyPressEvent(event);
  if (!isEnter) return event->ignore();  // also Esc, which QDialog would take as leave to hide the page
  PressMainButton();
  event->accept();
}

/// What Enter does: presses the button that has the focus, else the main button of this page or window, or, where a
/// page has none and the window wants that, the window's.
void CDialog::PressMainButton() {
  auto* pressed = qobject_cast<QPushButton*>(focusWidget());
  if (pressed == nullptr) pressed = m_mainButton;
  auto* outer = qobject_cast<CDialog*>(window());
  if (pressed == nullptr && outer != nullptr && outer != this && outer->EnterInPagesIsOurs())
    pressed = outer->m_mainButton;
  if (pressed != nullptr && pressed->isVisible() && pressed->isEnabled()) pressed->click();
}

/// Finds the button that Enter presses, and takes the choice from Qt, whose default button moves away with the focus.
void CDialog::Prepare() {
  if (m_prepared) return;
  m_prepared = true;
  for (QPushButton* button : findChildren<QPushButton*>()) {
    if (CDialog::Of(button) != this) continue;
    if (button->isDefault() && m_mainButton == nullptr) m_mainButton = button;
    button->setAutoDefault(false);
  }
  for (QGroupBox* group : findChildren<QGroupBox*>()) {
    if (CDialog::Of(group) == this) group->installEventFilter(this);
  }
  for (const QDialogButtonBox* box : findChildren<QDialogButtonBox*>()) {
    if (m_mainButton != nullptr || CDialog::Of(box) != this) continue;
    for (QAbstractButton* button : box->buttons()) {
      if (m_mainButton == nullptr && box->buttonRole(button) == QDialogButtonBox::AcceptRole) {
        m_mainButton = qobject_cast<QPushButton*>(button);
      }
    }
  }
  for (const QComboBox* combo : findChildren<QComboBox*>()) {  // one that can be typed into keeps Enter to itself
    if (CDialog::Of(combo) != this || !combo->isEditable()) continue;
    connect(combo->lineEdit(), &QLineEdit::returnPressed, this, &CDialog::PressMainButton);
  }
  for (QTabWidget* tabs : findChildren<QTabWidget*>()) {
    if (CDialog::Of(tabs) == this) KeepFocusInTabs(*tabs);
  }
  if (m_style == Style::Page) {
    if (m_mainButton != nullptr) m_mainButton->setDefault(false);  // until the focus is there
    return;
  }
  connect(qApp, &QApplication::focusChanged, this, [this](const QWidget*, const QWidget* now) {
    if (now != nullptr && now->window() == this) ShowMainButton(now);
  });
}

/// The dialog whose main button Enter presses while `focus` has the focus: the innermost page that has one, else the
/// window, if the pages leave it to that. Null: Enter does nothing.
CDialog* CDialog::WhoseEnter(const QWidget* focus) {
  CDialog* owner = CDialog::Of(focus);
  const bool inPage = owner != nullptr && owner != this;
  for (; owner != nullptr && owner != this; owner = CDialog::Of(owner->parentWidget())) {
    if (owner->m_mainButton != nullptr) return owner;
  }
  return !inPage || EnterInPagesIsOurs() ? this : nullptr;
}

/// Gives the frame of the default button to the one that Enter presses, and to no other.
void CDialog::ShowMainButton(const QWidget* focus) {
  const CDialog* owner = WhoseEnter(focus);
  QList<CDialog*> dialogs = findChildren<CDialog*>();
  dialogs << this;
  for (const CDialog* dialog : dialogs) {
    const bool isOurs = dialog == this || dialog->m_style == Style::Page;
    if (isOurs && dialog->m_mainButton != nullptr) dialog->m_mainButton->setDefault(dialog == owner);
  }
}

bool CDialog::focusNextPrevChild(bool next) {
  return (isWindow() && MoveFocus(*this, next)) || QDialog::focusNextPrevChild(next);
}

void CDialog::showEvent(QShowEvent* event) {
  if (m_style == Style::Page) return QDialog::showEvent(event);
  Prepare();
  FitOnScreen(*this);
  QDialog::showEvent(event);
  KeepOnScreen(*this);
  // Some systems give a window its frame only once it is on the screen.
  for (const int milliseconds : {50, 300}) {
    QTimer::singleShot(milliseconds, this, [this] {
      if (isVisible() && !isMinimized()) KeepOnScreen(*this);
    });
  }
  QWidget* first = FirstField(*this);
  if (first == nullptr) first = m_mainButton;
  if (first != nullptr && !event->spontaneous()) first->setFocus(Qt::TabFocusReason);
  ShowMainButton(focusWidget());
}

}  // namespace tarnwick::platform

#pragma once

#include <QDialog>
#include <QPointer>
#include <QPushButton>

#include "platform/data_exchange.h"
#include "platform/desktop.h"

namespace tarnwick::platform {

struct DroppedFiles;

/// The base of every dialog and page. A subclass sets up its form in the constructor and fills it in OnInitDialog; a
/// dialog object is cheap to keep and may be shown many times.
class CDialog : public QDialog {
  Q_OBJECT

 public:
  enum class Style {
    Window,  // a window of its own, modal or modeless
    Page,    // a part of its parent: Enter and Esc do not close it
  };

  /// `desktop` must outlive the dialog.
  explicit CDialog(Desktop& desktop, QWidget* parent = nullptr, Style style = Style::Window);
  ~CDialog() override;

  /// Runs the dialog modally and returns QDialog::Accepted (after OnOK) or QDialog::Rejected. OnInitDialog is called
  /// at each run.
  int DoModal();

  /// Starts a modeless dialog or page: calls OnInitDialog once and leaves it hidden. Further calls do nothing.
  void Create();
  /// Whether Create has been called.
  bool IsCreated() const { return m_created; }

  /// Ends a modal run, or hides a modeless window, with `result`.
  void EndDialog(int result);

  /// Makes files that are dropped anywhere on this window, its pages and its controls arrive at OnDropFiles, whether
  /// or not the control under the pointer is enabled or takes text drops of its own.
  void AcceptFiles();

  /// Dropped files with their point; does nothing here.
  virtual void OnDropFiles(const DroppedFiles& drop);

  /// Carries values from the controls to the members (`save`), or from the members to the controls.
  void UpdateData(bool save);

  /// The desktop that the dialog's boxes and choosers belong to.
  Desktop& DesktopSeam() const { return m_desktop; }

  /// The dialog that `widget` stands in; null if there is none. A control finds its seam through it.
  static CDialog* Of(const QWidget* widget);

  /// QDialog's slots; they come here from the buttons, Enter, Esc and the close box, and call the handlers below.
  void accept() override { OnOK(); }
  void reject() override { OnCancel(); }

 protected:
  /// Fills the dialog's controls; called before it is first seen. An override calls the base first, which does
  /// UpdateData(false).
  virtual void OnInitDialog();
  /// Binds controls to members, one DDX call each; does nothing here.
  virtual void DoDataExchange(CDataExchange& exchange);
  /// OK or Enter: takes the values of the controls and ends the dialog.
  virtual void OnOK();
  /// Cancel, Esc or the close box: ends the dialog.
  virtual void OnCancel();

  /// Whether Enter in a page that has no main button of its own presses the window's.
  virtual bool EnterInPagesIsOurs() const { return false; }

  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  void Prepare();
  void PressMainButton();
  CDialog* WhoseEnter(const QWidget* focus);
  void ShowMainButton(const QWidget* focus);

  Desktop& m_desktop;
  Style m_style;
  bool m_created = false;
  bool m_acceptsFiles = false;
  bool m_prepared = false;
  QPointer<QPushButton> m_mainButton;  // that Enter presses; Qt's own default button moves with the focus
};

}  // namespace tarnwick::platform

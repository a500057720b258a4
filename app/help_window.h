#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/dialog.h"

namespace Ui {
class HelpWindow;
}

namespace tarnwick::app {

/// The documents of the program, which it carries in itself, in a window that stays open beside the work.
class CHelpWindow : public platform::CDialog {
  Q_OBJECT

 public:
  /// `openWebPage` is called for the button that asks for the maker's page.
  CHelpWindow(platform::Desktop& desktop, QWidget* parent, std::function<void()> openWebPage);
  ~CHelpWindow() override;

  /// Shows the document about the window, from `heading` on if it has that.
  void ShowAt(const std::string& heading);

 private:
  void OpenDocument(int index);
  void FollowDocument(const QUrl& source);
  void OnLink(const QUrl& address);

  std::unique_ptr<Ui::HelpWindow> m_ui;
};

}  // namespace tarnwick::app

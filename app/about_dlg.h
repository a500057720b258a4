#pragma once

#include "platform/dialog.h"

namespace tarnwick::app {

/// Names the program, its version and its maker, with links to the maker's page and mail box.
class CAboutDlg : public platform::CDialog {
  Q_OBJECT

 public:
  CAboutDlg(platform::Desktop& desktop, QWidget* parent);
};

}  // namespace tarnwick::app

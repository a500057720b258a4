#pragma once

#include "platform/dialog.h"

namespace tarnwick::app {

/// Says what the game directory is.
class CGameDirectoryHelpDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CGameDirectoryHelpDialog(platform::Desktop& desktop, QWidget* parent);
};

}  // namespace tarnwick::app

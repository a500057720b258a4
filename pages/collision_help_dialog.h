#pragma once

#include "platform/dialog.h"

namespace tarnwick::pages {

/// Says what the collision model is, with a link to more.
class CCollisionHelpDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CCollisionHelpDialog(platform::Desktop& desktop, QWidget* parent);
};

}  // namespace tarnwick::pages

#pragma once

#include "platform/dialog.h"

namespace tarnwick::pages {

/// Shows a text and an OK button.
class CHelpDialog : public platform::CDialog {
  Q_OBJECT

 protected:
  CHelpDialog(platform::Desktop& desktop, QWidget* parent, const char* caption, const char* text);
};

/// Says what the material directory of the form is.
class CMdlMatDialog : public CHelpDialog {
  Q_OBJECT

 public:
  CMdlMatDialog(platform::Desktop& desktop, QWidget* parent);
};

/// Says what a surface property is.
class CSurfacePropHelpDialog : public CHelpDialog {
  Q_OBJECT

 public:
  CSurfacePropHelpDialog(platform::Desktop& desktop, QWidget* parent);
};

/// Says what a prop_physics type is.
class CPropPhysicsHelpDialog : public CHelpDialog {
  Q_OBJECT

 public:
  CPropPhysicsHelpDialog(platform::Desktop& desktop, QWidget* parent);
};

}  // namespace tarnwick::pages

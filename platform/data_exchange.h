#pragma once

#include <string>

class QAbstractButton;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;

namespace tarnwick::platform {

/// The direction of one exchange between a dialog's controls and its members.
struct CDataExchange {
  bool Saving;  // true: controls to members
};

/// Each call binds one control to one member: it reads the control into the member when saving, and else shows the
/// member's value.
void DDX_Text(const CDataExchange& exchange, QLineEdit& control, std::string& value);
void DDX_Text(const CDataExchange& exchange, QPlainTextEdit& control, std::string& value);
/// The text of an editable combo box, or of its selected item.
void DDX_Text(const CDataExchange& exchange, QComboBox& control, std::string& value);
void DDX_Check(const CDataExchange& exchange, QAbstractButton& control, bool& value);
/// The index of the selected item, -1 for none.
void DDX_CBIndex(const CDataExchange& exchange, QComboBox& control, int& value);

}  // namespace tarnwick::platform

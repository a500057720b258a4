#include "platform/data_exchange.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "platform/text.h"

namespace tarnwick::platform {

void DDX_Text(const CDataExchange& exchange, QLineEdit& control, std::string& value) {
  if (exchange.Saving) {
    value = FromQt(control.text());
  } else {
    control.setText(ToQt(value));
  }
}

void DDX_Text(const CDataExchange& exchange, QPlainTextEdit& control, std::string& value) {
  if (exchange.Saving) {
    value = FromQt(control.toPlainText());
  } else {
    control.setPlainText(ToQt(value));
  }
}

void DDX_Text(const CDataExchange& exchange, QComboBox& control, std::string& value) {
  if (exchange.Saving) {
    value = FromQt(control.currentText());
  } else if (control.isEditable()) {
    control.setEditText(ToQt(value));
  } else {
    control.setCurrentIndex(control.findText(ToQt(value)));
  }
}

void DDX_Check(const CDataExchange& exchange, QAbstractButton& control, bool& value) {
  if (exchange.Saving) {
    value = control.isChecked();
  } else {
    control.setChecked(value);
  }
}

void DDX_CBIndex(const CDataExchange& exchange, QComboBox& control, int& value) {
  if (exchange.Saving) {
    // A value that no item stands for selects none, and stays until the user selects one.
    if (control.currentIndex() >= 0) value = control.currentIndex();
  } else {
    control.setCurrentIndex(value < control.count() ? value : -1);
  }
}

}  // namespace tarnwick::platform

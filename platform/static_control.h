#pragma once

#include <QLabel>

namespace tarnwick::platform {

/// A static control: text, or whatever a subclass paints of its window text.
class CStatic : public QLabel {
  Q_OBJECT

 public:
  explicit CStatic(QWidget* parent = nullptr);

  /// The control's text as it was set.
  QString GetWindowText() const { return text(); }
  virtual void SetWindowText(const QString& text);

 protected:
  /// Called once, when the control has its font and is about to be seen for the first time.
  virtual void PreSubclassWindow() {}

  bool event(QEvent* event) override;

 private:
  bool m_subclassed = false;
};

}  // namespace tarnwick::platform

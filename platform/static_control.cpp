#include "platform/static_control.h"

#include <QEvent>

namespace tarnwick::platform {

CStatic::CStatic(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
}

void CStatic::SetWindowText(const QString& text) {
  setText(text);
}

bool CStatic::event(QEvent* event) {
  const bool handled = QLabel::event(event);
  if (event->type() == QEvent::Polish && !m_subclassed) {
    m_subclassed = true;
    PreSubclassWindow();
  }
  return handled;
}

}  // namespace tarnwick::platform

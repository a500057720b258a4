#include "platform/look.h"

#include <QApplication>
#include <QProxyStyle>

namespace tarnwick::platform {

namespace {

class PlainButtons : public QProxyStyle {
 public:
  using QProxyStyle::QProxyStyle;

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* result) const override {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
    return QProxyStyle::styleHint(hint, option, widget, result);
  }
};

}  // namespace

void ApplyLook(const QString& style) {
  QApplication::setStyle(style.isEmpty() ? new PlainButtons : new PlainButtons(style));
}

}  // namespace tarnwick::platform

#include "platform/look.h"

#include <QApplication>
#include <QProxyStyle>
#include <QStyleOptionButton>
#include <algorithm>

namespace tarnwick::platform {

namespace {

constexpr int CaptionMargin = 12;  // beside a button's text; some styles leave next to none

class PlainButtons : public QProxyStyle {
 public:
  using QProxyStyle::QProxyStyle;

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* result) const override {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
    return QProxyStyle::styleHint(hint, option, widget, result);
  }

  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                         const QWidget* widget) const override {
    QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    if (type == CT_PushButton && !static_cast<const QStyleOptionButton*>(option)->text.isEmpty()) {
      size.setWidth(std::max(size.width(), contents.width() + 2 * CaptionMargin));
    }
    return size;
  }
};

}  // namespace

void ApplyLook(const QString& style) {
  QApplication::setStyle(style.isEmpty() ? new PlainButtons : new PlainButtons(style));
}

void ShowAsReadOnly(QWidget& field) {
  QPalette plain;
  plain.setColor(QPalette::Base, Qt::transparent);
  field.setPalette(plain);
}

}  // namespace tarnwick::platform

#include "platform/look.h"

#include <QApplication>
#include <QEvent>
#include <QGroupBox>
#include <QProxyStyle>
#include <QSettings>
#include <QStyleOptionButton>
#include <algorithm>
#include <cmath>

#ifdef _WIN32
#include <windows.h>
#endif

namespace tarnwick::platform {

namespace {

constexpr int CaptionMargin = 12;  // beside a button's text; some styles leave next to none
constexpr int GroupMargin = 5;     // above and below what a group holds, at most

/// The desktop's style with plain buttons, and with groups that are low enough for the pages to fit a screen of 768
/// pixels.
class TidyStyle : public QProxyStyle {
 public:
  using QProxyStyle::QProxyStyle;

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* result) const override {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
    return QProxyStyle::styleHint(hint, option, widget, result);
  }

  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
    const int pixels = QProxyStyle::pixelMetric(metric, option, widget);
    const bool isAboveOrBelow = metric == PM_LayoutTopMargin || metric == PM_LayoutBottomMargin;
    return isAboveOrBelow && qobject_cast<const QGroupBox*>(widget) != nullptr ? std::min(pixels, GroupMargin) : pixels;
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

double Luminance(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor Mixed(const QColor& text, const QColor& base, double share) {
  const auto mix = [share](int a, int b) { return static_cast<int>(std::lround(a * share + b * (1 - share))); };
  return {mix(text.red(), base.red()), mix(text.green(), base.green()), mix(text.blue(), base.blue())};
}

/// Themes know a dark palette, but not all of them this role, which then keeps the black of the light one.
class PlaceholderKeeper : public QObject {
 public:
  using QObject::QObject;

  static void Mend() {
    QPalette palette = QApplication::palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
      palette.setColor(group, QPalette::PlaceholderText, PlaceholderColor(palette, group));
    }
    if (palette != QApplication::palette()) QApplication::setPalette(palette);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) Mend();
    return false;
  }
};

/// Whether the user wants dark windows from a style of the desktop's that has none. A palette of high contrast, which
/// is the user's too, is left as it is.
bool NeedsOwnDark() {
#ifdef _WIN32
  HIGHCONTRASTW contrast{};
  contrast.cbSize = sizeof(contrast);
  const bool isKnown = SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0) != 0;
  if (isKnown && (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0) return false;
  const QSettings theme(R"(HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Themes\Personalize)",
                        QSettings::NativeFormat);
  return theme.value("AppsUseLightTheme", 1).toInt() == 0;
#else
  return false;
#endif
}

}  // namespace

double Contrast(const QColor& a, const QColor& b) {
  const auto [darker, lighter] = std::minmax({Luminance(a), Luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

QColor PlaceholderColor(const QPalette& palette, QPalette::ColorGroup group) {
  const QColor base = palette.color(group, QPalette::Base);
  const QColor text = palette.color(group, QPalette::Text);
  const QColor least = palette.color(group, QPalette::PlaceholderText);
  const QColor seen = Mixed(least, base, least.alphaF());
  if (Contrast(seen, base) >= ReadableContrast) return least;
  for (int tenths = 6; tenths < 10; ++tenths) {
    const QColor mixed = Mixed(text, base, tenths / 10.0);
    if (Contrast(mixed, base) >= ReadableContrast) return mixed;
  }
  return text;
}

QPalette DarkPalette() {
  QPalette palette(QColor(53, 53, 53));
  palette.setColor(QPalette::Base, QColor(35, 35, 35));
  palette.setColor(QPalette::AlternateBase, QColor(45, 45, 45));
  palette.setColor(QPalette::Text, QColor(230, 230, 230));
  palette.setColor(QPalette::WindowText, QColor(230, 230, 230));
  palette.setColor(QPalette::ButtonText, QColor(230, 230, 230));
  palette.setColor(QPalette::PlaceholderText, QColor(150, 150, 150));
  palette.setColor(QPalette::Link, QColor(110, 170, 255));
  palette.setColor(QPalette::LinkVisited, QColor(190, 150, 255));
  palette.setColor(QPalette::Highlight, QColor(50, 110, 190));
  palette.setColor(QPalette::HighlightedText, Qt::white);  // else the desktop's, which is light
  for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(130, 130, 130));
  }
  return palette;
}

void ApplyLook(const QString& style) {
  const bool isDark = style.isEmpty() && NeedsOwnDark();
  const QString name = isDark ? "Fusion" : style;
  QApplication::setStyle(name.isEmpty() ? new TidyStyle : new TidyStyle(name));
  if (isDark) QApplication::setPalette(DarkPalette());
  qApp->installEventFilter(new PlaceholderKeeper(qApp));
  PlaceholderKeeper::Mend();
}

void ShowAsReadOnly(QWidget& field) {
  QPalette plain;
  plain.setColor(QPalette::Base, Qt::transparent);
  field.setPalette(plain);
}

}  // namespace tarnwick::platform

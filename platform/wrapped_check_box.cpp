#include "platform/wrapped_check_box.h"

#include <QStyleOptionButton>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <algorithm>

namespace tarnwick::platform {

namespace {

constexpr int TextFlags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap | Qt::TextShowMnemonic;
constexpr int LeastTextWidth = 120;  // pixels
constexpr int UsualTextWidth = 420;
constexpr int Margin = 2;  // above and below

}  // namespace

CWrappedCheckBox::CWrappedCheckBox(QWidget* parent) : QCheckBox(parent) {
  QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum, QSizePolicy::CheckBox);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
}

QSize CWrappedCheckBox::IndicatorSize() const {
  return {style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this),
          style()->pixelMetric(QStyle::PM_IndicatorHeight, nullptr, this)};
}

QRect CWrappedCheckBox::TextRect(int width) const {
  const int left = IndicatorSize().width() + style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, this);
  const QRect room(left, Margin, std::max(width - left, 1), QWIDGETSIZE_MAX);
  const QRect needed = fontMetrics().boundingRect(room, TextFlags, text());
  return {left, Margin, room.width(), needed.height()};
}

int CWrappedCheckBox::heightForWidth(int width) const {
  return std::max(TextRect(width).height(), IndicatorSize().height()) + 2 * Margin;
}

QSize CWrappedCheckBox::sizeHint() const {
  const int left = TextRect(1).left();
  const int whole = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
  const int width = left + std::min(whole, UsualTextWidth) + 1;
  return {width, heightForWidth(width)};
}

QSize CWrappedCheckBox::minimumSizeHint() const {
  return {TextRect(1).left() + LeastTextWidth, heightForWidth(std::max(width(), sizeHint().width()))};
}

bool CWrappedCheckBox::hitButton(const QPoint& point) const {
  return rect().contains(point);
}

void CWrappedCheckBox::paintEvent(QPaintEvent*) {
  QStylePainter painter(this);
  QStyleOptionButton option;
  initStyleOption(&option);
  const QSize indicator = IndicatorSize();
  const QRect textRect = TextRect(width());
  // The indicator stands beside the first line.
  const int top = textRect.top() + (fontMetrics().height() - indicator.height()) / 2;
  const bool reversed = layoutDirection() == Qt::RightToLeft;
  option.rect = QRect(QPoint(reversed ? width() - indicator.width() : 0, std::max(top, 0)), indicator);
  painter.drawPrimitive(QStyle::PE_IndicatorCheckBox, option);
  const QRect shownText = reversed ? textRect.translated(-textRect.left(), 0) : textRect;
  painter.drawItemText(shownText,
                       static_cast<int>(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft)) |
                           (TextFlags & ~static_cast<int>(Qt::AlignLeft)),
                       palette(), isEnabled(), text(), QPalette::WindowText);
  if (!hasFocus()) return;
  QStyleOptionFocusRect focus;
  focus.initFrom(this);
  focus.rect = fontMetrics().boundingRect(shownText, TextFlags, text());
  focus.backgroundColor = palette().color(QPalette::Window);
  painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
}

}  // namespace tarnwick::platform

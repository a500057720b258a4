#include "controls/hyperlink.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

#include "controls/goto_url.h"
#include "controls/hyperlink_fit.h"
#include "controls/painting.h"
#include "controls/readable_color.h"
#include "platform/text.h"

namespace tarnwick::controls {
namespace {

/// Whether `layout`, or one inside it, places `widget`.
bool Places(const QLayout* layout, const QWidget* widget) {
  if (layout == nullptr) return false;
  for (int i = 0; i < layout->count(); ++i) {
    QLayoutItem* item = layout->itemAt(i);
    if (item->widget() == widget || Places(item->layout(), widget)) return true;
  }
  return false;
}

HorizontalPlace PlaceOf(Qt::Alignment alignment) {
  if (alignment & Qt::AlignHCenter) return HorizontalPlace::Centre;
  return alignment & Qt::AlignRight ? HorizontalPlace::Right : HorizontalPlace::Left;
}

}  // namespace

QEvent::Type XHyperLinkClickedEvent::RegisteredType() {
  static const auto type = static_cast<Type>(QEvent::registerEventType());
  return type;
}

CXHyperLink::CXHyperLink(QWidget* parent) : CStatic(parent) {
  RegisterLinkControls();
  setMouseTracking(true);
  setFocusPolicy(Qt::TabFocus);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  SetLinkCursor();
}

void CXHyperLink::PreSubclassWindow() {
  m_subclassed = true;
  if (Url.empty()) Url = platform::FromQt(GetWindowText());
  if (GetWindowText().isEmpty()) CStatic::SetWindowText(platform::ToQt(Url));
  PositionWindow();
  UpdateToolTip();
}

void CXHyperLink::SetWindowText(const QString& text) {
  if (text.isEmpty()) return;
  CStatic::SetWindowText(text);
  PositionWindow();
}

void CXHyperLink::SetUrl(const std::string& url) {
  Url = url;
  PositionWindow();
  UpdateToolTip();
}

void CXHyperLink::SetColors(ColorValue link, ColorValue visited, std::optional<ColorValue> hover) {
  LinkColor = link;
  VisitedColor = visited;
  HoverColor = hover;
  update();
}

void CXHyperLink::SetBackgroundColor(ColorValue color) {
  BackgroundColor = color;
  update();
}

void CXHyperLink::SetVisited(bool visited) {
  Visited = visited;
  update();
}

void CXHyperLink::SetLinkCursor(const std::optional<QCursor>& cursor) {
  setCursor(cursor.value_or(Qt::PointingHandCursor));
}

void CXHyperLink::SetUnderline(UnderlineMode mode) {
  Underline = mode;
  update();
}

void CXHyperLink::SetAutoSize(bool adjustToFit) {
  AdjustToFit = adjustToFit;
  const QSizePolicy::Policy policy = adjustToFit ? QSizePolicy::Fixed : QSizePolicy::Preferred;
  setSizePolicy(policy, policy);
  PositionWindow();
}

void CXHyperLink::EnableToolTip(bool enabled) {
  ToolTipEnabled = enabled;
  UpdateToolTip();
}

void CXHyperLink::UpdateToolTip() {
  setToolTip(ToolTipEnabled ? PlainToolTip(platform::ToQt(Url)) : QString());
}

QSize CXHyperLink::sizeHint() const {
  const QSize text(fontMetrics().horizontalAdvance(GetWindowText()), fontMetrics().height());
  return text.grownBy(contentsMargins());
}

void CXHyperLink::PositionWindow() {
  updateGeometry();
  if (!m_subclassed || !AdjustToFit) return;
  if (parentWidget() != nullptr && Places(parentWidget()->layout(), this)) return;
  const QSize content = sizeHint();
  setGeometry(ToQt(FitToText(FromQt(geometry()), {content.width(), content.height()}, PlaceOf(alignment()),
                             alignment().testFlag(Qt::AlignVCenter))));
}

void CXHyperLink::changeEvent(QEvent* event) {
  CStatic::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) PositionWindow();
}

ColorValue CXHyperLink::CurrentColor() const {
  if (!isEnabled()) return FromQt(palette().color(QPalette::WindowText));
  ColorValue color = Visited ? VisitedColor : LinkColor;
  if (OverControl) color = HoverColor.value_or(FromQt(palette().color(QPalette::Highlight)));
  return BackgroundColor ? color : ReadableOn(color, FaceColor(*this));
}

bool CXHyperLink::IsUnderlined() const {
  return Underline == UnderlineAlways || (Underline == UnderlineHover && OverControl);
}

void CXHyperLink::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  drawFrame(&painter);
  if (BackgroundColor) painter.fillRect(contentsRect(), ToQt(*BackgroundColor));
  if (hasFocus()) DrawFocusMark(painter, *this, contentsRect());
  QFont shown = font();
  shown.setUnderline(IsUnderlined());
  painter.setFont(shown);
  painter.setPen(ToQt(CurrentColor()));
  painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextSingleLine, GetWindowText());
}

void CXHyperLink::SetOverControl(bool over) {
  if (over == OverControl) return;
  OverControl = over;
  update();
}

void CXHyperLink::mouseMoveEvent(QMouseEvent* event) {
  SetOverControl(rect().contains(event->position().toPoint()));
}

void CXHyperLink::leaveEvent(QEvent* event) {
  CStatic::leaveEvent(event);
  SetOverControl(false);
}

void CXHyperLink::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) event->ignore();
}

void CXHyperLink::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) {
    event->ignore();
  } else if (rect().contains(event->position().toPoint())) {
    OnClicked();
  }
}

void CXHyperLink::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space) {
    OnClicked();
  } else {
    event->ignore();
  }
}

void CXHyperLink::OnClicked() {
  SetOverControl(false);
  const QPointer<CXHyperLink> alive(this);
  // Without an address there is nothing that could fail.
  const bool opened = !GotoOnClick || Url.empty() || GotoUrl(*this, Url, AlwaysNewWindow);
  if (alive.isNull()) return;
  if (opened) {
    SetVisited();
  } else {
    QApplication::beep();
  }
  if (!NotifyParent || parentWidget() == nullptr) return;
  XHyperLinkClickedEvent event(objectName());
  QCoreApplication::sendEvent(parentWidget(), &event);
}

}  // namespace tarnwick::controls

// What the user sees of a CXHTMLStatic and does with it: painting, the mouse, the keyboard.
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMenu>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "controls/html_static.h"
#include "controls/link_address.h"
#include "controls/painting.h"
#include "controls/readable_color.h"
#include "platform/text.h"

namespace tarnwick::controls {
namespace {

/// A text whose lines are longer is hard to read: a control that is free to choose its width breaks them here.
constexpr int ComfortableCharacters = 80;

/// What frame and margins add to the size of the contents.
QSize SizeAround(const QWidget& widget) {
  return QSize(0, 0).grownBy(widget.contentsMargins());
}

}  // namespace

QSize CXHTMLStatic::sizeHint() const {
  const QSize around = SizeAround(*this);
  const Extent natural = NaturalSize(m_tokens, Start(), m_measure, m_state);
  const int comfortable = fontMetrics().averageCharWidth() * ComfortableCharacters;
  if (natural.Width <= comfortable) return QSize(natural.Width, natural.Height) + around;
  return QSize(comfortable, HeightForWidth(m_tokens, Start(), comfortable, m_measure, m_state)) + around;
}

QSize CXHTMLStatic::minimumSizeHint() const {
  const QSize around = SizeAround(*this);
  return QSize(WidestWord(m_tokens, Start(), m_measure, m_state), fontMetrics().height()) + around;
}

int CXHTMLStatic::heightForWidth(int width) const {
  const QSize around = SizeAround(*this);
  return HeightForWidth(m_tokens, Start(), width - around.width(), m_measure, m_state) + around.height();
}

void CXHTMLStatic::resizeEvent(QResizeEvent* event) {
  CStatic::resizeEvent(event);
  Refresh();
}

void CXHTMLStatic::changeEvent(QEvent* event) {
  CStatic::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) FontChanged();
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::EnabledChange) Refresh();
}

void CXHTMLStatic::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  drawFrame(&painter);
  painter.setClipRect(contentsRect());
  if (m_backgroundColor) painter.fillRect(contentsRect(), ToQt(*m_backgroundColor));

  const bool untouched = m_state == HtmlState();
  m_layout = MakeLayout(m_state);
  // A tag left open makes the text look different from now on.
  if (untouched && m_state != HtmlState()) updateGeometry();
  const HtmlStart start = Start();
  const auto readable = [&](ColorValue color, ColorValue background) {
    if (!isEnabled()) return ToQt(start.TextColor);
    const bool given = m_backgroundColor || background != start.BackgroundColor;
    return ToQt(given ? color : ReadableOn(color, background));
  };
  for (const HtmlFragment& fragment : m_layout.Fragments) {
    if (fragment.BackgroundColor == start.BackgroundColor) continue;
    painter.fillRect(ToQt(fragment.Box), ToQt(fragment.BackgroundColor));
  }
  for (size_t i = 0; i < m_layout.LinkRects.size() && hasFocus(); ++i) {
    if (m_layout.LinkNumbers[i] == m_focusLink) DrawFocusMark(painter, *this, ToQt(m_layout.LinkRects[i]));
  }
  for (const HtmlFragment& fragment : m_layout.Fragments) {
    painter.setFont(m_measure.FontOf(fragment.Font));
    painter.setPen(readable(fragment.TextColor, fragment.BackgroundColor));
    const int baseLine = fragment.Box.Top + m_measure.Metrics(fragment.Font).Ascent;
    painter.drawText(fragment.Box.Left, baseLine, platform::ToQt(fragment.Text));
  }
  for (const HtmlRule& rule : m_layout.Rules) {
    painter.fillRect(ToQt(rule.Box), readable(rule.Color, start.BackgroundColor));
  }
}

void CXHTMLStatic::SetOverLink(bool over) {
  if (over == m_overLink) return;
  m_overLink = over;
  if (over) {
    m_previousCursor.reset();
    if (testAttribute(Qt::WA_SetCursor)) m_previousCursor = cursor();
    setCursor(Qt::PointingHandCursor);
  } else if (m_previousCursor) {
    setCursor(*m_previousCursor);
  } else {
    unsetCursor();
  }
}

void CXHTMLStatic::mouseMoveEvent(QMouseEvent* event) {
  CStatic::mouseMoveEvent(event);
  SetOverLink(LinkAt(event->position().toPoint()) >= 0);
}

void CXHTMLStatic::leaveEvent(QEvent* event) {
  CStatic::leaveEvent(event);
  SetOverLink(false);
}

void CXHTMLStatic::mousePressEvent(QMouseEvent* event) {
  m_pressedLink = event->button() == Qt::LeftButton ? LinkAt(event->position().toPoint()) : -1;
  if (m_pressedLink < 0) CStatic::mousePressEvent(event);
}

void CXHTMLStatic::mouseReleaseEvent(QMouseEvent* event) {
  const int pressed = std::exchange(m_pressedLink, -1);
  if (event->button() != Qt::LeftButton || pressed < 0) return CStatic::mouseReleaseEvent(event);
  if (LinkAt(event->position().toPoint()) != pressed) return;
  m_focusLink = pressed;
  OpenLink(pressed);
}

void CXHTMLStatic::contextMenuEvent(QContextMenuEvent* event) {
  const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
  const int link = byKey ? m_focusLink : LinkAt(event->pos());
  const std::string address = AddressOf(link);
  if (address.empty()) return CStatic::contextMenuEvent(event);
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addAction(tr("&Open Link"), this, [this, link] { OpenLink(link); });
  menu->addAction(tr("&Copy Link Address"), this,
                  [address] { QApplication::clipboard()->setText(platform::ToQt(OpenableAddress(address))); });
  menu->popup(event->globalPos());
}

bool CXHTMLStatic::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
    const auto* help = static_cast<QHelpEvent*>(event);
    const int rect = m_layout.LinkAt(help->x(), help->y());
    if (rect >= 0) {
      const auto at = static_cast<size_t>(rect);
      const QString address = platform::ToQt(OpenableAddress(m_layout.LinkUrls[at]));
      QToolTip::showText(help->globalPos(), PlainToolTip(address), this, ToQt(m_layout.LinkRects[at]));
    } else {
      QToolTip::hideText();
    }
    return true;
  }
  return CStatic::event(event);
}

void CXHTMLStatic::keyPressEvent(QKeyEvent* event) {
  const bool opens = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
  if (opens && LinkCount() > 0) {
    OpenLink(m_focusLink);
  } else {
    event->ignore();
  }
}

void CXHTMLStatic::focusInEvent(QFocusEvent* event) {
  CStatic::focusInEvent(event);
  if (event->reason() == Qt::TabFocusReason) m_focusLink = 0;
  if (event->reason() == Qt::BacktabFocusReason) m_focusLink = std::max(0, LinkCount() - 1);
  update();
}

void CXHTMLStatic::focusOutEvent(QFocusEvent* event) {
  CStatic::focusOutEvent(event);
  update();
}

bool CXHTMLStatic::focusNextPrevChild(bool next) {
  const int target = m_focusLink + (next ? 1 : -1);
  if (!hasFocus() || target < 0 || target >= LinkCount()) return CStatic::focusNextPrevChild(next);
  m_focusLink = target;
  update();
  return true;
}

}  // namespace tarnwick::controls

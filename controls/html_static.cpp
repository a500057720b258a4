#include "controls/html_static.h"

#include <QApplication>
#include <QToolTip>
#include <algorithm>

#include "controls/goto_url.h"
#include "controls/link_address.h"
#include "controls/painting.h"
#include "core/paths.h"
#include "platform/text.h"

namespace tarnwick::controls {
CXHTMLStatic::CXHTMLStatic(QWidget* parent) : CStatic(parent), m_measure(font()) {
  RegisterLinkControls();
  setMouseTracking(true);
}

void CXHTMLStatic::PreSubclassWindow() {
  FontChanged();
}

void CXHTMLStatic::SetWindowText(const QString& text) {
  m_textColor.reset();
  m_backgroundColor.reset();
  m_state = {};
  m_focusLink = 0;
  m_pressedLink = -1;
  m_tokens = ScanHtml(platform::FromQt(text));
  CStatic::SetWindowText(text);
  SetOverLink(false);
  Refresh();
  setFocusPolicy(LinkCount() > 0 ? Qt::TabFocus : Qt::NoFocus);
  updateGeometry();
  repaint();
}

ColorValue CXHTMLStatic::SetBkColor(std::string_view colorName) {
  return SetBkColor(CXNamedColors(colorName).GetRGB());
}

ColorValue CXHTMLStatic::SetBkColor(ColorValue color) {
  const ColorValue old = Start().BackgroundColor;
  m_backgroundColor = color;
  Refresh();
  return old;
}

ColorValue CXHTMLStatic::SetTextColor(std::string_view colorName) {
  return SetTextColor(CXNamedColors(colorName).GetRGB());
}

ColorValue CXHTMLStatic::SetTextColor(ColorValue color) {
  const ColorValue old = Start().TextColor;
  m_textColor = color;
  Refresh();
  return old;
}

HtmlStart CXHTMLStatic::Start() const {
  return {m_textColor.value_or(FromQt(palette().color(QPalette::WindowText))),
          m_backgroundColor.value_or(FaceColor(*this)), m_measure.BaseFont()};
}

HtmlLayout CXHTMLStatic::MakeLayout(HtmlState& state) const {
  return LayoutHtml(m_tokens, Start(), FromQt(contentsRect()), m_measure, state);
}

void CXHTMLStatic::FontChanged() {
  m_measure = QtTextMeasure(font());
  Refresh();
  updateGeometry();
}

/// Finds out where everything goes; what the text leaves behind counts only when it is painted.
void CXHTMLStatic::Refresh() {
  HtmlState state = m_state;
  m_layout = MakeLayout(state);
  update();
}

int CXHTMLStatic::LinkCount() const {
  return m_layout.LinkNumbers.empty() ? 0 : m_layout.LinkNumbers.back() + 1;
}

int CXHTMLStatic::LinkAt(const QPoint& point) const {
  const int rect = m_layout.LinkAt(point.x(), point.y());
  return rect < 0 ? -1 : m_layout.LinkNumbers[static_cast<size_t>(rect)];
}

std::string CXHTMLStatic::AddressOf(int link) const {
  const auto found = std::find(m_layout.LinkNumbers.begin(), m_layout.LinkNumbers.end(), link);
  if (found == m_layout.LinkNumbers.end()) return {};
  return m_layout.LinkUrls[static_cast<size_t>(found - m_layout.LinkNumbers.begin())];
}

void CXHTMLStatic::OpenLink(int link) {
  const std::string address = AddressOf(link);
  if (const auto name = AppCommandName(address)) {
    // The receiver may change or delete this control.
    for (const XHtmlAppCommand& command : std::vector(m_appCommands)) {
      if (!core::EqualIgnoringCase(command.Name, *name) || command.Window.isNull()) continue;
      XHtmlAppEvent event(command.Message, command.Parameter);
      QCoreApplication::sendEvent(command.Window, &event);
    }
    return;
  }
  const QPointer<CXHTMLStatic> alive(this);
  if (address.empty() || GotoUrl(*this, address) || alive.isNull()) return;
  QApplication::beep();
  QToolTip::showText(QCursor::pos(), tr("No program was found that opens %1.").arg(platform::ToQt(address)), this);
}

QString CXHTMLStatic::LinkText() const {
  return platform::ToQt(PlainHtmlText(platform::FromQt(GetWindowText())));
}

bool CXHTMLStatic::IsOneLink() const {
  return LinkCount() == 1 && m_layout.LinkRects.size() == m_layout.Fragments.size();
}

}  // namespace tarnwick::controls

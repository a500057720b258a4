#pragma once

#include <QCursor>
#include <QEvent>
#include <QPointer>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/html_layout.h"
#include "controls/link_control.h"
#include "controls/named_colors.h"
#include "controls/qt_text_measure.h"
#include "platform/static_control.h"

namespace tarnwick::controls {

/// What a link to `APP:Name` does: an XHtmlAppEvent of type `Message` goes to `Window`, while that lives.
struct XHtmlAppCommand {
  QPointer<QWidget> Window;
  QEvent::Type Message = QEvent::None;
  uint32_t Parameter = 0;
  std::string Name;
};

/// The event that an application command sends.
struct XHtmlAppEvent : QEvent {
  XHtmlAppEvent(Type message, uint32_t parameter) : QEvent(message), Parameter(parameter) {}
  uint32_t Parameter;
};

/// A static control that shows its window text as a small subset of HTML (see ScanHtml) and opens its links on a click.
///
/// Beyond the mouse, Tab goes through the links and Enter or Space opens the one it is on; a tooltip shows a link's
/// address and the context menu copies it. In a dark window text colours that could not be read are made lighter,
/// unless a background colour is given.
class CXHTMLStatic : public platform::CStatic, public LinkControl {
  Q_OBJECT

 public:
  explicit CXHTMLStatic(QWidget* parent = nullptr);

  /// Shows `text` at once, with colours and everything else as in a new control.
  void SetWindowText(const QString& text) override;
  /// The name under which forms set the text.
  void setText(const QString& text) { SetWindowText(text); }

  /// Each sets a colour, by a name as in CXNamedColors or by its value, and returns the one before. Without them the
  /// control has the colours of its window.
  virtual ColorValue SetBkColor(std::string_view colorName);
  virtual ColorValue SetBkColor(ColorValue color);
  virtual ColorValue SetTextColor(std::string_view colorName);
  virtual ColorValue SetTextColor(ColorValue color);

  /// What links to `APP:` do; without a command of its name such a link does nothing.
  void SetAppCommands(std::vector<XHtmlAppCommand> commands) { m_appCommands = std::move(commands); }

  /// Where text and links are, in pixels of the control.
  const HtmlLayout& Layout() const { return m_layout; }
  /// The number (see HtmlLayout::LinkNumbers) of the link that Tab is on, whether or not the control has the focus.
  int FocusLink() const { return m_focusLink; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  int heightForWidth(int width) const override;
  bool hasHeightForWidth() const override { return true; }

  QString LinkText() const override;
  bool IsOneLink() const override;
  std::string CurrentAddress() const override { return AddressOf(m_focusLink); }
  void OpenCurrentLink() override { OpenLink(m_focusLink); }

 protected:
  void PreSubclassWindow() override;

  bool event(QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  HtmlStart Start() const;
  HtmlLayout MakeLayout(HtmlState& state) const;
  void FontChanged();
  void Refresh();
  int LinkCount() const;
  int LinkAt(const QPoint& point) const;
  std::string AddressOf(int link) const;
  void OpenLink(int link);
  void SetOverLink(bool over);

  std::vector<HtmlToken> m_tokens;
  QtTextMeasure m_measure;
  HtmlState m_state;
  HtmlLayout m_layout;
  std::optional<ColorValue> m_textColor;        // nothing: the window's
  std::optional<ColorValue> m_backgroundColor;  // nothing: the window's
  std::vector<XHtmlAppCommand> m_appCommands;
  bool m_overLink = false;
  std::optional<QCursor> m_previousCursor;  // the control's own, while the link cursor replaces it
  int m_pressedLink = -1;
  int m_focusLink = 0;
};

}  // namespace tarnwick::controls

#pragma once

#include <QCursor>
#include <QEvent>
#include <optional>
#include <string>

#include "controls/link_control.h"
#include "controls/named_colors.h"
#include "controls/rect.h"
#include "platform/static_control.h"

namespace tarnwick::controls {

/// The event that a CXHyperLink sends to its parent after a click: the message registered as "WM_XHYPERLINK_CLICKED".
class XHyperLinkClickedEvent : public QEvent {
 public:
  explicit XHyperLinkClickedEvent(const QString& controlName) : QEvent(RegisteredType()), ControlName(controlName) {}

  /// The event's type, the same for the whole run of the program.
  static Type RegisteredType();

  QString ControlName;  // the control's object name
};

/// A static control that is one link: a text, an address, a colour before and after a visit and under the mouse.
///
/// A control without an address links to its text, and one without a text shows its address. Unless SetAutoSize(false)
/// is called it takes the size of its text, at the place in its old rectangle that its alignment names; in a layout it
/// asks the layout for that size. Tab reaches it, Enter and Space open it.
class CXHyperLink : public platform::CStatic, public LinkControl {
  Q_OBJECT

 public:
  enum UnderlineMode { UnderlineHover = -1, UnderlineNever = 0, UnderlineAlways = 1 };

  explicit CXHyperLink(QWidget* parent = nullptr);

  /// Shows `text`; an empty one changes nothing.
  void SetWindowText(const QString& text) override;
  /// The name under which forms set the text.
  void setText(const QString& text) { SetWindowText(text); }

  void SetUrl(const std::string& url);
  const std::string& GetUrl() const { return Url; }

  /// Without a hover colour that of selections is taken.
  void SetColors(ColorValue link, ColorValue visited, std::optional<ColorValue> hover = std::nullopt);
  void SetBackgroundColor(ColorValue color);
  void SetVisited(bool visited = true);
  bool IsVisited() const { return Visited; }
  /// Without a cursor the platform's hand is taken.
  void SetLinkCursor(const std::optional<QCursor>& cursor = std::nullopt);
  void SetUnderline(UnderlineMode mode);
  void SetAutoSize(bool adjustToFit);

  /// Whether a click opens the address (it does at first), in a window of its own where the system can do that (not
  /// at first), and whether it sends an XHyperLinkClickedEvent to the parent (not at first).
  void SetGotoOnClick(bool goesTo) { GotoOnClick = goesTo; }
  void SetAlwaysNewWindow(bool newWindow) { AlwaysNewWindow = newWindow; }
  void SetNotifyParent(bool notifies) { NotifyParent = notifies; }
  /// Whether a tooltip shows the address (it does at first).
  void EnableToolTip(bool enabled);

  /// How the text looks now.
  ColorValue CurrentColor() const;
  bool IsUnderlined() const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

  QString LinkText() const override { return GetWindowText(); }
  bool IsOneLink() const override { return true; }
  std::string CurrentAddress() const override { return Url; }
  void OpenCurrentLink() override { OnClicked(); }

 protected:
  void PreSubclassWindow() override;

  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void OnClicked();
  void PositionWindow();
  void UpdateToolTip();
  void SetOverControl(bool over);

  ColorValue LinkColor = MakeColor(0, 0, 238);
  ColorValue VisitedColor = MakeColor(85, 26, 139);
  std::optional<ColorValue> HoverColor = MakeColor(255, 0, 0);
  std::optional<ColorValue> BackgroundColor;
  bool OverControl = false;
  bool Visited = false;
  UnderlineMode Underline = UnderlineHover;
  bool AdjustToFit = true;
  std::string Url;
  bool GotoOnClick = true;
  bool NotifyParent = false;
  bool ToolTipEnabled = true;
  bool AlwaysNewWindow = false;
  bool m_subclassed = false;
};

}  // namespace tarnwick::controls

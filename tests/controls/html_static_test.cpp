#include "controls/html_static.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include "controls/readable_color.h"
#include "platform/dialog.h"
#include "window_support/scripted_desktop.h"

namespace tarnwick::controls {
namespace {

using ::testing::ElementsAre;
using tests::ScriptedDesktop;

const QString BlueLink =
    "<u><font color=\"#0000ff\"><a href=http://x.example/page.htm>http://x.example/page.htm</a></font></u>";

/// A dialog with one control in a layout.
class LinkDialog : public platform::CDialog {
 public:
  explicit LinkDialog(platform::Desktop& desktop, const QString& text) : CDialog(desktop) {
    Control.SetWindowText(text);
    auto* rows = new QVBoxLayout(this);
    rows->addWidget(&Control);
    show();
    resize(500, 200);
    EXPECT_TRUE(QTest::qWaitForWindowExposed(this));
  }

  void ClickRect(size_t link) {
    const Rect& rect = Control.Layout().LinkRects.at(link);
    QTest::mouseClick(&Control, Qt::LeftButton, {}, QPoint((rect.Left + rect.Right) / 2, (rect.Top + rect.Bottom) / 2));
  }

  CXHTMLStatic Control{this};
};

/// How many pixels of the control's picture have `color`.
int CountPixels(QWidget& control, ColorValue color) {
  const QImage picture = control.grab().toImage().convertToFormat(QImage::Format_RGB32);
  const QRgb wanted =
      qRgb(static_cast<int>(RedOf(color)), static_cast<int>(GreenOf(color)), static_cast<int>(BlueOf(color)));
  int count = 0;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) count += picture.pixel(x, y) == wanted ? 1 : 0;
  }
  return count;
}

TEST(HtmlStatic, ShowsAnUnderlinedBlueLinkThatOpensOnAClick) {
  ScriptedDesktop desktop;
  LinkDialog dialog(desktop, BlueLink);
  ASSERT_EQ(dialog.Control.Layout().Fragments.size(), 1u);
  const HtmlFragment text = dialog.Control.Layout().Fragments[0];  // each painting lays the text out anew
  EXPECT_TRUE(text.Font.Underline);
  EXPECT_GT(CountPixels(dialog.Control, MakeColor(0, 0, 255)), text.Box.Width() - 1) << "the underline at least";

  dialog.ClickRect(0);
  EXPECT_THAT(desktop.Opened, ElementsAre("http://x.example/page.htm"));
  EXPECT_TRUE(dialog.isVisible());
  const Rect rect = dialog.Control.Layout().LinkRects[0];
  QTest::mouseClick(&dialog.Control, Qt::LeftButton, {}, QPoint(rect.Right + 3, rect.Top + 2));
  EXPECT_EQ(desktop.Opened.size(), 1u) << "beside the link";
}

TEST(HtmlStatic, ShowsTheHandOverLinksOnly) {
  ScriptedDesktop desktop;
  LinkDialog dialog(desktop, "see <a href=a>page</a>");
  dialog.Control.setCursor(Qt::CrossCursor);
  const Rect rect = dialog.Control.Layout().LinkRects[0];
  QTest::mouseMove(&dialog.Control, QPoint(rect.Left + 2, rect.Top + 2));
  EXPECT_EQ(dialog.Control.cursor().shape(), Qt::PointingHandCursor);
  QTest::mouseMove(&dialog.Control, QPoint(1, rect.Top + 2));
  EXPECT_EQ(dialog.Control.cursor().shape(), Qt::CrossCursor) << "what it had before";
}

TEST(HtmlStatic, TakesTheKeyboardThroughItsLinks) {
  ScriptedDesktop desktop;
  LinkDialog dialog(desktop, "<a href=one>1</a> and <a href=\"two\">2</a>");
  dialog.Control.setFocus(Qt::TabFocusReason);
  QTest::keyClick(&dialog.Control, Qt::Key_Return);
  QTest::keyClick(&dialog.Control, Qt::Key_Tab);
  QTest::keyClick(&dialog.Control, Qt::Key_Space);
  QTest::keyClick(&dialog.Control, Qt::Key_Backtab);
  QTest::keyClick(&dialog.Control, Qt::Key_Enter);
  EXPECT_THAT(desktop.Opened, ElementsAre("one", "two", "one"));
  EXPECT_TRUE(dialog.isVisible()) << "the keys open the link and do not end the dialog";

  dialog.Control.SetWindowText("no link here");
  EXPECT_EQ(dialog.Control.focusPolicy(), Qt::NoFocus);
}

TEST(HtmlStatic, FallsBackToTheBrowserOnly) {
  struct BrowserDesktop : ScriptedDesktop {
    bool OpenInBrowser(const std::string& address) override {
      Browsed.push_back(address);
      return true;
    }
    std::vector<std::string> Browsed;
  } desktop;
  desktop.OpenSucceeds = false;
  LinkDialog dialog(desktop, "<a href=\"www.x.example\">x</a>");
  dialog.ClickRect(0);
  EXPECT_THAT(desktop.Browsed, ElementsAre("www.x.example"));
}

TEST(HtmlStatic, SendsApplicationCommands) {
  struct Receiver : QWidget {
    bool event(QEvent* event) override {
      if (event->type() == QEvent::User) Parameters.push_back(static_cast<XHtmlAppEvent*>(event)->Parameter);
      return QWidget::event(event);
    }
    std::vector<uint32_t> Parameters;
  } receiver;
  ScriptedDesktop desktop;
  LinkDialog dialog(desktop, "<a href=\"app:go on\">x</a> <a href=APP:none>y</a>");
  dialog.ClickRect(0);
  dialog.Control.SetAppCommands({{nullptr, QEvent::User, 1, "Go On"}, {&receiver, QEvent::User, 2, "GO ON"}});
  dialog.ClickRect(0);
  dialog.ClickRect(1);
  EXPECT_THAT(receiver.Parameters, ElementsAre(2u));
  EXPECT_TRUE(desktop.Opened.empty());
}

TEST(HtmlStatic, SetsColoursAndResetsThemWithTheText) {
  CXHTMLStatic control;
  control.SetWindowText("text");
  const ColorValue face = control.SetBkColor("Yellow");
  EXPECT_EQ(control.SetBkColor(MakeColor(1, 2, 3)), MakeColor(255, 255, 0));
  control.SetTextColor("#ff0000");
  EXPECT_EQ(control.SetTextColor("nonsense"), MakeColor(255, 0, 0));
  EXPECT_GT(CountPixels(control, MakeColor(1, 2, 3)), 100);
  control.SetWindowText("other");
  EXPECT_EQ(control.SetBkColor(MakeColor(1, 2, 3)), face);
}

TEST(HtmlStatic, StaysReadableInADarkWindow) {
  ScriptedDesktop desktop;
  LinkDialog dialog(desktop, BlueLink);
  QPalette dark;
  dark.setColor(QPalette::Window, QColor(32, 35, 38));
  dark.setColor(QPalette::WindowText, Qt::white);
  dialog.setPalette(dark);
  const ColorValue face = MakeColor(32, 35, 38);
  EXPECT_GT(CountPixels(dialog.Control, ReadableOn(MakeColor(0, 0, 255), face)), 20);
  EXPECT_EQ(CountPixels(dialog.Control, MakeColor(0, 0, 255)), 0);
  dialog.Control.SetBkColor("White");
  EXPECT_GT(CountPixels(dialog.Control, MakeColor(0, 0, 255)), 20) << "the author has chosen the background";
}

TEST(HtmlStatic, FollowsItsFont) {
  ScriptedDesktop desktop;
  LinkDialog dialog(desktop, "a <b>few</b> words");
  const QSize before = dialog.Control.sizeHint();
  QFont large = dialog.font();
  large.setPointSizeF(large.pointSizeF() * 2);
  dialog.setFont(large);
  const QSize after = dialog.Control.sizeHint();
  EXPECT_GT(after.width(), before.width() * 3 / 2);
  EXPECT_GT(after.height(), before.height() * 3 / 2);
  EXPECT_GE(dialog.Control.Layout().Fragments.back().Box.Right, after.width() - 4);
}

TEST(HtmlStatic, AsksForTheHeightThatItsTextNeeds) {
  ScriptedDesktop desktop;
  LinkDialog dialog(desktop, QString("some words ").repeated(100));
  dialog.resize(300, dialog.layout()->totalHeightForWidth(300));
  QApplication::processEvents();
  const HtmlLayout& layout = dialog.Control.Layout();
  std::string shown;
  for (const HtmlFragment& fragment : layout.Fragments) shown += fragment.Text + " ";
  EXPECT_EQ(std::count(shown.begin(), shown.end(), 'w'), 100) << "no line is lost";
}

TEST(HtmlStatic, TellsAScreenReaderItsWordsAndItsLink) {
  CXHTMLStatic control;
  control.SetWindowText(BlueLink);
  QAccessibleInterface* seen = QAccessible::queryAccessibleInterface(&control);
  ASSERT_NE(seen, nullptr);
  EXPECT_EQ(seen->role(), QAccessible::Link);
  EXPECT_EQ(seen->text(QAccessible::Name), "http://x.example/page.htm");
  control.SetWindowText("For help go to: " + BlueLink);
  EXPECT_EQ(seen->role(), QAccessible::StaticText);
  EXPECT_EQ(seen->text(QAccessible::Name), "For help go to: http://x.example/page.htm");
  ASSERT_NE(seen->actionInterface(), nullptr);
  EXPECT_TRUE(seen->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
}

}  // namespace
}  // namespace tarnwick::controls

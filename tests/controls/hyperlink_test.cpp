#include "controls/hyperlink.h"

#include <gmock/gmock.h>

#include <QTest>

#include "platform/dialog.h"
#include "window_support/scripted_desktop.h"

namespace tarnwick::controls {
namespace {

using ::testing::ElementsAre;
using tests::ScriptedDesktop;

/// A dialog with a link at a fixed place, which counts the notifications it gets.
class LinkDialog : public platform::CDialog {
 public:
  explicit LinkDialog(platform::Desktop& desktop) : CDialog(desktop) {
    resize(400, 200);
    Link.setObjectName("homeLink");
    Link.setGeometry(100, 50, 200, 60);
  }

  void Show() {
    show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(this));
  }

  bool event(QEvent* event) override {
    if (event->type() == XHyperLinkClickedEvent::RegisteredType()) {
      Notified.push_back(static_cast<XHyperLinkClickedEvent*>(event)->ControlName.toStdString());
    }
    return CDialog::event(event);
  }

  CXHyperLink Link{this};
  std::vector<std::string> Notified;
};

void ClickLink(CXHyperLink& link) {
  QTest::mouseClick(&link, Qt::LeftButton, {}, link.rect().center());
}

TEST(Hyperlink, LinksToItsTextAndShowsItsAddress) {
  ScriptedDesktop desktop;
  LinkDialog textOnly(desktop);
  textOnly.Link.SetWindowText("http://x.example");
  textOnly.Show();
  ClickLink(textOnly.Link);
  EXPECT_THAT(desktop.Opened, ElementsAre("http://x.example"));
  EXPECT_EQ(textOnly.Link.toolTip(), "http://x.example");

  LinkDialog addressOnly(desktop);
  addressOnly.Link.SetUrl("http://y.example");
  addressOnly.Show();
  EXPECT_EQ(addressOnly.Link.GetWindowText(), "http://y.example");
  addressOnly.Link.SetWindowText("");
  EXPECT_EQ(addressOnly.Link.GetWindowText(), "http://y.example");
}

TEST(Hyperlink, TakesTheSizeOfItsTextWhereItStands) {
  ScriptedDesktop desktop;
  LinkDialog dialog(desktop);
  dialog.Link.SetWindowText("Home");
  dialog.Link.setAlignment(Qt::AlignRight | Qt::AlignTop);
  dialog.Show();
  const QRect small = dialog.Link.geometry();
  EXPECT_EQ(small.size(), dialog.Link.sizeHint());
  EXPECT_EQ(small.topRight(), QPoint(299, 50));

  dialog.Link.SetWindowText("A longer text");
  EXPECT_GT(dialog.Link.width(), small.width());
  EXPECT_EQ(dialog.Link.geometry().topRight(), QPoint(299, 50));
  const int height = dialog.Link.height();
  QFont large = dialog.font();
  large.setPointSizeF(large.pointSizeF() * 2);
  dialog.setFont(large);
  EXPECT_GT(dialog.Link.height(), height);

  dialog.Link.SetAutoSize(false);
  dialog.Link.setGeometry(0, 0, 300, 100);
  dialog.Link.SetWindowText("x");
  EXPECT_EQ(dialog.Link.geometry(), QRect(0, 0, 300, 100));
}

TEST(Hyperlink, ChangesItsLookUnderTheMouseAndAfterAVisit) {
  ScriptedDesktop desktop;
  LinkDialog dialog(desktop);
  CXHyperLink& link = dialog.Link;
  link.SetWindowText("x.example");
  dialog.Show();
  link.SetColors(1, 2, 3);
  EXPECT_EQ(link.CurrentColor(), 1u);
  EXPECT_FALSE(link.IsUnderlined());
  QTest::mouseMove(&link, link.rect().center());
  QTest::mouseMove(&link, link.rect().center() + QPoint(1, 0));
  EXPECT_EQ(link.CurrentColor(), 3u);
  EXPECT_TRUE(link.IsUnderlined());
  link.SetUnderline(CXHyperLink::UnderlineNever);
  EXPECT_FALSE(link.IsUnderlined());
  ClickLink(link);
  EXPECT_EQ(link.CurrentColor(), 2u);
  link.SetUnderline(CXHyperLink::UnderlineAlways);
  EXPECT_TRUE(link.IsUnderlined());
}

TEST(Hyperlink, NotifiesItsParentWhetherOrNotTheAddressOpens) {
  ScriptedDesktop desktop;
  LinkDialog dialog(desktop);
  dialog.Link.SetWindowText("x.example");
  dialog.Show();
  ClickLink(dialog.Link);
  EXPECT_TRUE(dialog.Notified.empty());

  dialog.Link.SetVisited(false);
  dialog.Link.SetNotifyParent(true);
  desktop.OpenSucceeds = false;
  dialog.Link.setFocus();
  QTest::keyClick(&dialog.Link, Qt::Key_Return);
  EXPECT_FALSE(dialog.Link.IsVisited());
  EXPECT_THAT(dialog.Notified, ElementsAre("homeLink"));

  dialog.Link.SetGotoOnClick(false);
  const size_t opened = desktop.Opened.size();
  ClickLink(dialog.Link);
  EXPECT_EQ(desktop.Opened.size(), opened);
  EXPECT_TRUE(dialog.Link.IsVisited());
  EXPECT_EQ(dialog.Notified.size(), 2u);
}

}  // namespace
}  // namespace tarnwick::controls

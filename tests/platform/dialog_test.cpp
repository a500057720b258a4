#include "platform/dialog.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "platform/dropped_files.h"
#include "platform/window_placing.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::platform {

namespace {

using testing::ElementsAre;
using tests::ScriptedDesktop;

/// A dialog with two fields; `Name` is bound to the first.
class FieldDialog : public CDialog {
 public:
  explicit FieldDialog(Desktop& desktop, QWidget* parent = nullptr, Style style = Style::Window)
      : CDialog(desktop, parent, style) {
    Button.setDefault(true);
    Second.move(0, 40);
    Button.move(0, 80);
  }

  QLineEdit First{this};
  QLineEdit Second{this};
  QPushButton Button{"Do", this};
  std::string Name = "start";
  std::vector<std::string> Dropped;
  bool DropIsOverSecond = false;

 protected:
  void DoDataExchange(CDataExchange& exchange) override { DDX_Text(exchange, First, Name); }
  void OnDropFiles(const DroppedFiles& drop) override {
    Dropped = drop.Paths;
    DropIsOverSecond = drop.IsOver(Second) && !drop.IsOver(First);
  }
};

TEST(Dialog, CarriesValuesInAtTheStartAndOutOnOkOnly) {
  ScriptedDesktop desktop;
  FieldDialog dialog(desktop);
  const auto type = [&](void (QDialog::*end)()) {
    return [&dialog, end](QWidget&) {
      EXPECT_EQ(dialog.First.text(), "start");
      dialog.First.setText("typed");
      (dialog.*end)();
    };
  };
  tests::WhenModalOpens(type(&QDialog::reject));
  EXPECT_EQ(dialog.DoModal(), QDialog::Rejected);
  EXPECT_EQ(dialog.Name, "start");
  tests::WhenModalOpens(type(&QDialog::accept));
  EXPECT_EQ(dialog.DoModal(), QDialog::Accepted);
  EXPECT_EQ(dialog.Name, "typed");
}

TEST(Dialog, APageStaysWhenEscIsPressedAndEnterPressesItsOwnButton) {
  ScriptedDesktop desktop;
  FieldDialog window(desktop);
  FieldDialog page(desktop, &window, CDialog::Style::Page);
  int windowClicks = 0;
  int pageClicks = 0;
  QObject::connect(&window.Button, &QPushButton::clicked, [&] { ++windowClicks; });
  QObject::connect(&page.Button, &QPushButton::clicked, [&] { ++pageClicks; });
  page.Create();
  page.show();
  window.show();
  QTest::keyClick(&page.First, Qt::Key_Return);
  EXPECT_EQ(pageClicks, 1);
  page.Button.setEnabled(false);
  QTest::keyClick(&page.First, Qt::Key_Return);
  EXPECT_EQ(pageClicks, 1);
  EXPECT_EQ(windowClicks, 0) << "what is typed in a page does not press the window's button";
  QTest::keyClick(&page.First, Qt::Key_Escape);
  EXPECT_FALSE(page.isHidden());
  EXPECT_FALSE(window.isVisible()) << "Esc is the window's";
}

TEST(Dialog, GetsFilesThatAreDroppedOnAnEditBox) {
  ScriptedDesktop desktop;
  FieldDialog window(desktop);
  window.AcceptFiles();
  window.Create();
  window.show();
  tests::Drop(window.Second, {"/m/a b.mdl", "/m/ä.mdl"});
  EXPECT_THAT(window.Dropped, ElementsAre(QDir::toNativeSeparators("/m/a b.mdl").toStdString(),
                                          QDir::toNativeSeparators("/m/ä.mdl").toStdString()));
  EXPECT_TRUE(window.DropIsOverSecond);
  EXPECT_EQ(window.Second.text(), "") << "the edit box does not take the drop as text";
}

TEST(WindowPlacing, KeepsTheTitleBarInReach) {
  const QMargins frame(1, 20, 1, 5);
  const QRect room(0, 30, 1366, 738);  // below a panel
  EXPECT_EQ(PlaceInRoom(QRect(300, 0, 740, 700), frame, room), QPoint(300, 50));
  EXPECT_EQ(PlaceInRoom(QRect(300, 100, 740, 700), frame, room), QPoint(300, 63));
  EXPECT_EQ(PlaceInRoom(QRect(-50, 60, 100, 100), frame, room), QPoint(1, 60));
  EXPECT_EQ(PlaceInRoom(QRect(1300, 60, 100, 100), frame, room), QPoint(1265, 60));
  EXPECT_EQ(PlaceInRoom(QRect(10, 40, 2000, 2000), frame, room), QPoint(1, 50)) << "the title first";
}

}  // namespace

}  // namespace tarnwick::platform

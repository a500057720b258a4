// Every window of the program, opened as a user sees it.

#include <gtest/gtest.h>

#include <QApplication>
#include <QPushButton>
#include <QScreen>
#include <QTabBar>
#include <QTest>
#include <QTreeView>
#include <algorithm>
#include <set>

#include "platform/dialog.h"
#include "platform/tab_order.h"
#include "screenshots/subject.h"

namespace tarnwick {
namespace {

using platform::CDialog;
using screenshots::Stage;
using screenshots::Subject;

std::vector<Subject> AllSubjects() {
  std::vector<Subject> all;
  for (auto subjects : {screenshots::ShellSubjects(), screenshots::ModelSubjects(), screenshots::TextureSubjects()}) {
    all.insert(all.end(), subjects.begin(), subjects.end());
  }
  return all;
}

class EveryWindow : public testing::TestWithParam<Subject> {
 protected:
  EveryWindow() {
    m_window = GetParam().Make(m_stage);
    m_window->show();
    m_window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
  }
  /// The controls that Tab comes to, from the one that has the focus.
  std::vector<QWidget*> TabStops() const {
    std::vector<QWidget*> stops;
    QWidget* first = m_window->focusWidget();
    for (QWidget* at = first; at != nullptr && (stops.empty() || at != first); at = m_window->focusWidget()) {
      stops.push_back(at);
      if (stops.size() > 200) break;
      QTest::keyClick(at, Qt::Key_Tab);
    }
    return stops;
  }

  Stage m_stage;
  std::unique_ptr<QWidget> m_window;
};

TEST_P(EveryWindow, LiesOnTheFreeScreenWithItsFrame) {
  const QRect room = m_window->screen()->availableGeometry();
  EXPECT_TRUE(room.contains(m_window->frameGeometry()))
      << m_window->frameGeometry().width() << " x " << m_window->frameGeometry().height() << " at "
      << m_window->frameGeometry().top();
}

TEST_P(EveryWindow, OpensWithTheFocusInItsFirstField) {
  QWidget* first = platform::FirstField(*m_window);
  if (first != nullptr) {
    EXPECT_EQ(m_window->focusWidget(), first) << first->objectName().toStdString();
  } else {
    EXPECT_NE(qobject_cast<QPushButton*>(m_window->focusWidget()), nullptr);
  }
}

TEST_P(EveryWindow, FramesOneButtonAndEnterPressesIt) {
  std::vector<QPushButton*> framed;
  for (QPushButton* button : m_window->findChildren<QPushButton*>()) {
    if (button->isDefault() && button->isVisibleTo(m_window.get())) framed.push_back(button);
  }
  ASSERT_EQ(framed.size(), 1u);
  if (qobject_cast<QPushButton*>(m_window->focusWidget()) != nullptr) return;  // Enter presses what has the focus
  QString pressed;
  framed.front()->disconnect();  // what it does is not asked here
  QObject::connect(framed.front(), &QPushButton::clicked, [&] { pressed = framed.front()->objectName(); });
  if (!framed.front()->isEnabled()) return;
  QTest::keyClick(m_window->focusWidget(), Qt::Key_Return);
  EXPECT_EQ(pressed.toStdString(), framed.front()->objectName().toStdString())
      << "with the focus in " << m_window->focusWidget()->objectName().toStdString();
}

/// Whether `next` is where the eye goes behind `before`: to its right, or below it.
bool Follows(const QRect& before, const QRect& next) {
  return next.left() >= before.right() || next.top() >= before.top();
}

TEST_P(EveryWindow, TabGoesDownTheForm) {
  const std::vector<QWidget*> stops = TabStops();
  const std::set<QWidget*> distinct(stops.begin(), stops.end());
  std::string names;
  for (const QWidget* stop : distinct) names += stop->objectName().toStdString() + " ";
  EXPECT_EQ(distinct.size(), stops.size()) << "Tab goes round among " << names;
  ASSERT_FALSE(stops.empty());
  const auto place = [&](QWidget* stop) { return QRect(stop->mapTo(m_window.get(), QPoint(0, 0)), stop->size()); };
  int backward = 0;
  for (size_t i = 0; i < stops.size(); ++i) {
    const QWidget* next = stops[(i + 1) % stops.size()];
    if (!Follows(place(stops[i]), place(const_cast<QWidget*>(next)))) ++backward;
  }
  // Once from the last to the first; a second time at most where one column stands beside another.
  EXPECT_LE(backward, 2);
}

TEST_P(EveryWindow, BringsWhatTabComesToIntoSight) {
  const size_t count = TabStops().size();
  for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
    for (size_t i = 0; i < count; ++i) {
      QTest::keyClick(m_window->focusWidget(), key);
      const QWidget* stop = m_window->focusWidget();
      EXPECT_FALSE(stop->visibleRegion().isEmpty()) << stop->objectName().toStdString();
    }
  }
}

TEST_P(EveryWindow, GivesEveryButtonWordsOrAPictureWithAName) {
  for (const QPushButton* button : m_window->findChildren<QPushButton*>()) {
    const std::string name = button->objectName().toStdString();
    EXPECT_FALSE(button->text().isEmpty() && button->accessibleName().isEmpty()) << name;
    EXPECT_FALSE(button->isDefault() && button->text().isEmpty()) << name << " is a main button";
  }
}

INSTANTIATE_TEST_SUITE_P(All, EveryWindow, testing::ValuesIn(AllSubjects()), [](const auto& each) {
  std::string name = each.param.Name;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

}  // namespace
}  // namespace tarnwick

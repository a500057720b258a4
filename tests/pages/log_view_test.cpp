#include "pages/log_view.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QScrollBar>
#include <QTest>

namespace tarnwick::pages {

namespace {

class LogView : public testing::Test {
 protected:
  LogView() {
    m_view.resize(200, 100);
    m_view.show();
  }
  void AppendLines(int count, const char* text = "line\r\n") {
    std::string lines;
    for (int i = 0; i < count; ++i) lines += text;
    m_view.Append(lines);
    QApplication::processEvents();
  }
  bool ShowsEnd() const { return m_view.verticalScrollBar()->value() == m_view.verticalScrollBar()->maximum(); }

  CLogView m_view;
};

TEST_F(LogView, FollowsItsEndUntilTheUserScrollsAway) {
  for (int i = 0; i < 20; ++i) {
    AppendLines(7);
    ASSERT_TRUE(ShowsEnd());
    m_view.resize(200 + i % 3 * 20, 60 + i % 5 * 30);  // the layout changes behind the text
    QApplication::processEvents();
    ASSERT_TRUE(ShowsEnd());
  }
  m_view.verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepSub);
  const int place = m_view.verticalScrollBar()->value();
  AppendLines(50);
  EXPECT_EQ(m_view.verticalScrollBar()->value(), place);
  m_view.verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMaximum);
  AppendLines(50);
  EXPECT_TRUE(ShowsEnd());
  m_view.verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMinimum);
  m_view.Clear();
  AppendLines(50);
  EXPECT_TRUE(ShowsEnd()) << "a new text begins at its end";
}

TEST_F(LogView, KeepsABoundedTailOfWhateverComes) {
  AppendLines(3, "first\n");
  AppendLines(CLogView::KeptLines + 500, "a line that is printed over and over\n");
  EXPECT_LE(m_view.document()->blockCount(), CLogView::KeptLines);
  EXPECT_FALSE(m_view.toPlainText().contains("first"));
  m_view.Append("the end");
  EXPECT_TRUE(m_view.toPlainText().endsWith("over\nthe end"));
  EXPECT_TRUE(ShowsEnd());
}

TEST_F(LogView, TakesACharacterThatComesInTwoPieces) {
  m_view.Append("r\xC3");
  m_view.Append("\xA4v\r\n");
  EXPECT_EQ(m_view.toPlainText(), QString::fromUtf8("r\xC3\xA4v\n"));
}

}  // namespace

}  // namespace tarnwick::pages

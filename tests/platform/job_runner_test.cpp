#include "platform/job_runner.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <memory>
#include <new>
#include <semaphore>
#include <thread>

#include "platform/dialog.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::platform {

namespace {

using testing::ElementsAre;
using tests::ShownBox;

class JobRunnerTest : public testing::Test {
 protected:
  JobRunnerTest() { m_page.show(); }

  JobView View() {
    return {.Bar = &m_bar,
            .LogGrew = [this](const std::string& text) { m_log += text; },
            .Tick = {},
            .Done = [this] { ++m_done; }};
  }

  tests::ScriptedDesktop m_desktop;
  CDialog m_page{m_desktop};
  QProgressBar m_bar{&m_page};
  QDialog m_status{&m_page};
  std::unique_ptr<JobRunner> m_jobs = std::make_unique<JobRunner>(m_page);
  std::string m_log;
  int m_done = 0;
};

TEST_F(JobRunnerTest, KeepsTheWindowAliveAndThePageDisabled) {
  std::binary_semaphore go(0);
  const auto userThread = std::this_thread::get_id();
  m_status.show();
  ASSERT_TRUE(m_jobs->Start(
      [&](core::Report& report, const std::stop_token&) {
        EXPECT_NE(std::this_thread::get_id(), userThread);
        report.Log("one\r\n");
        go.acquire();
        report.Log("two\r\n");
      },
      View()));
  EXPECT_FALSE(m_page.isEnabled());
  EXPECT_TRUE(m_status.isEnabled()) << "the page's status window can be used meanwhile";
  EXPECT_FALSE(m_jobs->Start([](core::Report&, const std::stop_token&) {}, {})) << "one job at a time";
  EXPECT_TRUE(tests::WaitUntil([&] { return m_log == "one\r\n" && m_bar.value() > 2; }));
  EXPECT_EQ(m_done, 0);
  go.release();
  EXPECT_TRUE(tests::WaitUntil([&] { return !m_jobs->IsRunning(); }));
  EXPECT_EQ(m_log, "one\r\ntwo\r\n");
  EXPECT_EQ(m_done, 1);
  EXPECT_EQ(m_bar.value(), 100);
  EXPECT_TRUE(m_page.isEnabled());
}

TEST_F(JobRunnerTest, GivesTheFocusBackToTheFieldThatHadIt) {
  QWidget window;
  auto* page = new CDialog(m_desktop, &window, CDialog::Style::Page);
  auto* field = new QLineEdit(page);
  new QLineEdit(&window);  // gets the focus meanwhile
  auto* third = new QLineEdit(&window);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  JobRunner jobs(*page);
  for (QWidget* chosen : {static_cast<QWidget*>(nullptr), static_cast<QWidget*>(third)}) {
    field->setFocus();
    jobs.Start([](core::Report&, const std::stop_token&) {}, {});
    EXPECT_NE(window.focusWidget(), field) << "the page is disabled";
    if (chosen != nullptr) chosen->setFocus();
    ASSERT_TRUE(tests::WaitUntil([&] { return !jobs.IsRunning(); }));
    EXPECT_EQ(window.focusWidget(), chosen == nullptr ? field : chosen);
  }
}

TEST_F(JobRunnerTest, ASecondEnterIsNotTakenForOneToTheWindow) {
  CDialog window(m_desktop);
  auto* page = new CDialog(m_desktop, &window, CDialog::Style::Page);
  auto* field = new QLineEdit(page);
  auto* about = new QPushButton(&window);
  about->setDefault(true);
  int pressed = 0;
  QObject::connect(about, &QPushButton::clicked, [&] { ++pressed; });
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  const auto enter = [&] {
    QWidget* focus = window.focusWidget();
    QTest::keyClick(focus != nullptr ? focus : &window, Qt::Key_Return);
  };
  field->setFocus();
  std::binary_semaphore go(0);
  JobRunner jobs(*page);
  jobs.Start([&](core::Report&, const std::stop_token&) { go.acquire(); }, {});
  enter();
  EXPECT_EQ(pressed, 0);
  about->setFocus();
  enter();
  EXPECT_EQ(pressed, 1) << "the user has gone there";
  go.release();
  ASSERT_TRUE(tests::WaitUntil([&] { return !jobs.IsRunning(); }));
}

TEST_F(JobRunnerTest, GivesTheFocusBackWhereTheJobWasStartedInAnotherWindow) {
  QWidget window;
  auto* page = new CDialog(m_desktop, &window, CDialog::Style::Page);
  auto* field = new QLineEdit(page);
  new QLineEdit(&window);  // gets the focus meanwhile
  CDialog status(m_desktop, page);
  auto* again = new QPushButton(&status);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  field->setFocus();
  status.show();
  status.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&status));
  again->setFocus();
  JobRunner jobs(*page);
  jobs.Start([](core::Report&, const std::stop_token&) {}, {});
  ASSERT_TRUE(tests::WaitUntil([&] { return !jobs.IsRunning(); }));
  EXPECT_EQ(window.focusWidget(), field);
  EXPECT_EQ(QApplication::focusWidget(), again) << "the window in front keeps it";
}

TEST_F(JobRunnerTest, AsksForTheWorkerAndAnswersCancelAtTheEnd) {
  m_desktop.BoxAnswers = {BoxAnswer::Ok, BoxAnswer::Cancel};
  std::vector<BoxAnswer> answers;
  const MessageBoxRequest question{"Go on?", "Warning", BoxIcon::Exclamation, BoxButtons::OkCancel};
  m_jobs->Start(
      [&](JobReport& report, const std::stop_token&) {
        answers = {report.Ask(question), report.Ask(question)};
      },
      View());
  ASSERT_TRUE(tests::WaitUntil([&] { return m_done == 1; }));
  EXPECT_THAT(answers, ElementsAre(BoxAnswer::Ok, BoxAnswer::Cancel));
  EXPECT_EQ(m_desktop.Boxes.front(), (ShownBox{BoxIcon::Exclamation, "Go on?", "Warning", BoxButtons::OkCancel}));

  m_jobs->Start([&](JobReport& report, const std::stop_token&) { answers = {report.Ask(question)}; }, View());
  m_jobs.reset();  // the window is gone before anybody could be asked
  EXPECT_THAT(answers, ElementsAre(BoxAnswer::Cancel));
  EXPECT_EQ(m_desktop.Boxes.size(), 2u);
}

TEST_F(JobRunnerTest, ShowsTheWorkersBoxesOnTheUserInterfaceThreadAndWaits) {
  m_jobs->Start(
      [](core::Report& report, const std::stop_token&) {
        report.ErrorBox(core::TroubleKind::Tool, "Unable to load model", "Error");
        report.WarningBox(core::TroubleKind::Tool, "Odd", "Warning");
        report.Log("after");
      },
      View());
  EXPECT_TRUE(tests::WaitUntil([&] { return m_done == 1; }));
  EXPECT_THAT(m_desktop.Boxes, ElementsAre(ShownBox{BoxIcon::Stop, "Unable to load model", "Error"},
                                           ShownBox{BoxIcon::Exclamation, "Odd", "Warning"}));
  EXPECT_EQ(m_log, "after");
}

TEST_F(JobRunnerTest, SaysWhenTheWorkRanOutOfMemory) {
  m_jobs->Start([](core::Report&, const std::stop_token&) { throw std::bad_alloc(); }, View());
  EXPECT_TRUE(tests::WaitUntil([&] { return m_done == 1; }));
  EXPECT_EQ(m_desktop.Boxes.size(), 1u);
}

TEST_F(JobRunnerTest, EndsWithItsPageAlsoWhileTheWorkWaitsForAnAnswer) {
  bool wasAsked = false;
  m_jobs->Start(
      [&](core::Report& report, const std::stop_token& stop) {
        while (!stop.stop_requested()) std::this_thread::yield();
        report.ErrorBox(core::TroubleKind::Tool, "nobody is there", "Error");
        wasAsked = true;
      },
      View());
  m_jobs.reset();
  EXPECT_TRUE(wasAsked);
  EXPECT_TRUE(m_desktop.Boxes.empty());
  EXPECT_EQ(m_done, 0);
}

}  // namespace

}  // namespace tarnwick::platform

#include "jobs/item_run.h"

#include <gmock/gmock.h>

#include <future>
#include <set>
#include <stdexcept>
#include <thread>

#include "support/recording_host.h"

namespace tarnwick::jobs {
namespace {

using core::Severity;
using core::TroubleKind;
using testing::ElementsAre;
using tests::RecordingHost;

JobPlan PlanOf(size_t count) {
  JobPlan plan;
  for (size_t i = 0; i < count; ++i) plan.Items.push_back({"in" + std::to_string(i), "out" + std::to_string(i)});
  return plan;
}

std::vector<Verdict> VerdictsOf(const JobResult& result) {
  std::vector<Verdict> verdicts;
  for (const ItemResult& item : result.Items) verdicts.push_back(item.Judged);
  return verdicts;
}

TEST(RunItems, TellsAnItemFromItsStartToItsResult) {
  RecordingHost host;
  const JobResult result = RunItems(PlanOf(1), {1, 1}, host, {}, [](size_t, ItemRun& run) {
    run.Log("reading\r\n");
    run.Tell({.Level = Severity::Warning, .Kind = TroubleKind::Lost, .Text = "a doubt"});
    run.Progressed("a.smd", 1, 2);
    run.Result.Files.push_back({"out0/a.smd", 12});
  });
  ItemResult item{.Input = "in0", .Source = "in0", .Target = "out0", .Judged = Verdict::Succeeded};
  item.Files = {{"out0/a.smd", 12}};
  item.Troubles = {{.Level = Severity::Warning, .Kind = TroubleKind::Lost, .Text = "a doubt"}};
  EXPECT_THAT(host.Events,
              ElementsAre(Started{1}, ItemStarted{0, "in0", "out0"},
                          Line{0, LineSource::Log, tools::LineKind::Plain, "reading\r\n"}, Told{0, item.Troubles[0]},
                          Progress{0, "a.smd", 1, 2}, ItemFinished{0, item}, Finished{{{item}, {}, 0}}));
  EXPECT_TRUE(result.Succeeded());
  EXPECT_EQ(result.Items[0].Bytes(), 12u);
  EXPECT_GT(result.Items[0].Seconds, 0);
  EXPECT_GE(result.Seconds, result.Items[0].Seconds);
}

TEST(RunItems, JudgesByWhatWasTold) {
  RecordingHost host;
  const JobResult result = RunItems(PlanOf(4), {1, 1}, host, {}, [](size_t item, ItemRun& run) {
    if (item == 1) run.Fail(TroubleKind::Damaged, "no good");
    if (item == 2) throw std::runtime_error("out of memory");
    if (item == 3) run.Tell({.Kind = TroubleKind::Stopped, .Text = "stopped"});
  });
  EXPECT_THAT(VerdictsOf(result), ElementsAre(Verdict::Succeeded, Verdict::Failed, Verdict::Failed, Verdict::Stopped));
  EXPECT_FALSE(result.Succeeded());
  EXPECT_EQ(result.Count(Verdict::Failed), 2u);
  EXPECT_EQ(result.Items[2].First(Severity::Error)->Text, "out of memory");
  EXPECT_EQ(result.Items[0].First(Severity::Error), nullptr);
}

TEST(RunItems, FailsWhereAnInputCannotBeHad) {
  RecordingHost host;
  JobPlan plan = PlanOf(1);
  plan.Troubles.push_back({.Kind = TroubleKind::Missing, .Text = "no such folder"});
  EXPECT_FALSE(RunItems(plan, {1, 1}, host, {}, [](size_t, ItemRun&) {}).Succeeded());
  EXPECT_THAT(host.All<Told>(), ElementsAre(Told{NoItem, plan.Troubles[0]}));
  plan.Troubles[0].Level = Severity::Warning;
  EXPECT_TRUE(RunItems(plan, {1, 1}, host, {}, [](size_t, ItemRun&) {}).Succeeded());
}

TEST(RunItems, BeginsNothingBehindAStop) {
  RecordingHost host;
  std::stop_source stop;
  const JobResult result = RunItems(PlanOf(3), {1, 1}, host, stop.get_token(),
                                    [&](size_t item, ItemRun&) { item == 1 && stop.request_stop(); });
  EXPECT_THAT(VerdictsOf(result), ElementsAre(Verdict::Succeeded, Verdict::Succeeded, Verdict::NotBegun));
  EXPECT_FALSE(result.Succeeded());
  EXPECT_EQ(host.All<ItemFinished>().size(), 2u);
}

TEST(RunItems, TellsTheHostOneEventAtATimeFromManyThreads) {
  RecordingHost host;  // not made for several threads
  const JobResult result = RunItems(PlanOf(40), {8, 8}, host, {}, [](size_t, ItemRun& run) {
    for (int i = 0; i < 20; ++i) run.Log("line\n");
  });
  EXPECT_TRUE(result.Succeeded());
  EXPECT_EQ(host.All<Line>().size(), 800u);
  EXPECT_TRUE(std::holds_alternative<Finished>(host.Events.back()));
  std::set<size_t> finished;
  for (const ItemFinished& each : host.All<ItemFinished>()) finished.insert(each.Item);
  EXPECT_EQ(finished.size(), 40u);
}

TEST(RunItems, LetsIdleThreadsHelpTheItemAtHand) {
  RecordingHost host;
  std::thread::id helper;
  RunItems(PlanOf(1), {2, 2}, host, {}, [&](size_t, ItemRun& run) {
    std::promise<void> done;
    run.Helpers.Post([&] {
      helper = std::this_thread::get_id();
      done.set_value();
    });
    done.get_future().wait();
  });
  EXPECT_NE(helper, std::thread::id());
}

TEST(ItemRun, CutsOutputIntoLinesWhoseTextsAreTheOutput) {
  RecordingHost host;
  const std::string long_line(200'000, 'x');
  RunItems(PlanOf(1), {1, 1}, host, {}, [&](size_t, ItemRun& run) {
    run.Command("tool -a");
    run.ToolText("one\r");
    run.ToolText("\n\nERROR: two\nWarn");
    run.ToolText("ing: three");
    run.Log("own ");
    run.Log("words\r\n");
    run.ToolText(long_line);
  });
  const auto lines = host.All<Line>();
  ASSERT_EQ(lines.size(), 10u);
  EXPECT_EQ(lines[0], (Line{0, LineSource::Command, tools::LineKind::Plain, "tool -a\r\n"}));
  EXPECT_EQ(lines[1].Text, "one\r\n");
  EXPECT_EQ(lines[3].Kind, tools::LineKind::Error);
  EXPECT_EQ(lines[4], (Line{0, LineSource::Tool, tools::LineKind::Warning, "Warning: three"}));
  EXPECT_EQ(lines[5], (Line{0, LineSource::Log, tools::LineKind::Plain, "own words\r\n"}));
  EXPECT_EQ(host.Text(LineSource::Tool), "one\r\n\nERROR: two\nWarning: three" + long_line);
  EXPECT_EQ(host.All<Finished>()[0].Result.Items[0].CommandLine, "tool -a");
}

TEST(ItemRun, AsksAQuestionThatGotANoOnlyOnce) {
  RecordingHost host;
  host.Answer = false;
  std::vector<bool> answers;
  RunItems(PlanOf(2), {1, 1}, host, {}, [&](size_t, ItemRun& run) {
    answers.push_back(run.Ask({.Kind = QuestionKind::MakeDirectory, .Text = "Make a?"}));
    answers.push_back(run.Ask({.Kind = QuestionKind::MakeDirectory, .Text = "Make b?"}));
    host.Answer = true;
  });
  EXPECT_THAT(answers, ElementsAre(false, false, false, false));
  EXPECT_EQ(host.Questions.size(), 2u);
}

}  // namespace
}  // namespace tarnwick::jobs

#include "process/run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "core/sanitized.h"
#include "support/scratch_folder.h"

namespace tarnwick::process {
namespace {

using std::chrono::milliseconds;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr auto Long = "60000";  // milliseconds; no test waits for it

CapturedRun RunProbe(const std::vector<std::string>& arguments, const RunOptions& options = {},
                     const StartOptions& start = {}) {
  CapturedRun run = RunAndKeep({CONSOLE_PROBE, arguments}, start, options);
  std::erase(run.Output, '\r');
  return run;
}

TEST(Run, KeepsTheOutputAndTellsTheEnd) {
  const CapturedRun run = RunProbe({"streams"});
  EXPECT_FALSE(run.NotStarted);
  EXPECT_EQ(run.Output, "out0 err0 out1 err1 out2 err2 ");
  EXPECT_EQ(run.Outcome.OutputBytes, run.Output.size());
  EXPECT_EQ(run.Outcome.Cut, RunCut::None);
  EXPECT_EQ(RunProbe({"exit", "3"}).Outcome.End->ExitCode, 3);
  EXPECT_EQ(RunProbe({"input"}).Output, "end\n") << "there is no input";
  StartOptions dropped;
  dropped.Errors = ErrorOutput::Dropped;
  EXPECT_EQ(RunProbe({"streams"}, {}, dropped).Output, "out0 out1 out2 ");
}

TEST(Run, TellsWhatEndedAProgramThatCrashed) {
#ifdef _WIN32
  const std::string cause = "exception 0xC0000005";
#else
  const std::string cause = "signal 6";
#endif
  EXPECT_EQ(CrashCause(*RunProbe({"crash"}).Outcome.End), cause);
  EXPECT_EQ(CrashCause(*RunProbe({"exit", "-1"}).Outcome.End), "");
}

TEST(Run, IsEndedAtItsDeadlineAndAtItsMostOutput) {
  RunOptions late;
  late.Deadline = milliseconds(200);
  const CapturedRun slow = RunProbe({"stubborn", Long}, late);
  EXPECT_EQ(slow.Outcome.Cut, RunCut::TimedOut);
  EXPECT_LT(slow.Outcome.OutputBytes, 100u) << "what it prints is bounded by its start";

  RunOptions little;
  little.MostOutput = 1000;
  const CapturedRun flood = RunProbe({"fill", "2000000000"}, little);
  EXPECT_EQ(flood.Outcome.Cut, RunCut::TooMuch);
  EXPECT_LT(flood.Outcome.OutputBytes, 1u << 20);
  EXPECT_EQ(RunProbe({"fill", "1000"}, little).Outcome.Cut, RunCut::None);
}

TEST(Run, HonoursItsStopTokenWhileTheChildIsSilent) {
  std::stop_source stop;
  RunOptions options;
  options.Stop = stop.get_token();
  options.OnText = [&](std::string_view) {  // the child says who it is, and nothing more
    std::thread([&] { stop.request_stop(); }).join();
  };
  const CapturedRun run = RunProbe({"wait", Long}, options);
  EXPECT_EQ(run.Outcome.Cut, RunCut::Stopped);
  EXPECT_THAT(run.Output, testing::Not(HasSubstr("waited")));
}

TEST(Run, WaitsForAGrandchildThatStillPrintsButNotForOneThatIsSilent) {
  EXPECT_THAT(RunProbe({"leave", "300"}).Output, HasSubstr("waited\n"));
  RunOptions options;
  options.QuietAfterEnd = milliseconds(3000);  // in which a busy machine has started the grandchild, which prints first
  const CapturedRun run = RunProbe({"leave", "15000"}, options);
  EXPECT_TRUE(run.Outcome.OutputAbandoned);
  EXPECT_THAT(run.Output, StartsWith("process "));
}

// A sanitizer's own memory is more than any limit.
#if defined(__linux__) && !TARNWICK_SANITIZED
TEST(Run, BoundsTheMemoryOfTheChildAndOfWhatItStarts) {
  for (const bool minded : {false, true}) {
    SCOPED_TRACE(minded);
    StartOptions start;
    start.Minded = minded;
    start.MostMemory = uint64_t{256} << 20;
    EXPECT_EQ(RunProbe({"memory", "64"}, {}, start).Output, "got 64\n");
    EXPECT_EQ(RunProbe({"slow-memory", "512"}, {}, start).Output, "refused 512\n");
    EXPECT_EQ(RunProbe({"slow-memory", "512"}).Output, "got 512\n");
  }
}
#endif

#ifdef __linux__
TEST(Run, AMinderPassesOnHowTheChildStartsAndEnds) {
  StartOptions minded;
  minded.Minded = true;
  EXPECT_EQ(RunProbe({"exit", "3"}, {}, minded).Outcome.End->ExitCode, 3);
  EXPECT_EQ(CrashCause(*RunProbe({"crash"}, {}, minded).Outcome.End), "signal 6");
  EXPECT_EQ(RunProbe({"streams"}, {}, minded).Output, "out0 err0 out1 err1 out2 err2 ");
  EXPECT_EQ(RunProbe({"arguments", "", "a b", "\"\\"}, {}, minded).Output, "[]\n[a b]\n[\"\\]\n");
  const CapturedRun missing = RunAndKeep({"/no/such/program", {}}, minded, {});
  ASSERT_TRUE(missing.NotStarted);
  EXPECT_EQ(missing.NotStarted->Code, RunAndKeep({"/no/such/program", {}}, {}, {}).NotStarted->Code);
  RunOptions options;
  options.QuietAfterEnd = milliseconds(100);
  EXPECT_TRUE(RunProbe({"leave", "2000"}, options, minded).Outcome.OutputAbandoned) << "what it left runs on";
}
#endif

}  // namespace
}  // namespace tarnwick::process

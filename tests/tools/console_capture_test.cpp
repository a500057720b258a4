#include "tools/console_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/recording_report.h"
#include "support/scratch_folder.h"
#include "tools/probe_run.h"
#include "tools/tool_run.h"

namespace tarnwick::tools {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using tests::ScratchFolder;
using tests::WriteText;

TEST(ConsoleCapture, GivesTheChildItsFourBytesOfInput) {
  EXPECT_EQ(RunProbe({"input"}).Text, "20 20 00 00 end\n");
}

TEST(ConsoleCapture, RunsTheToolOfItsPathAndNotOneThatStandsAtABlankInIt) {
  const ScratchFolder folder;
  const std::string tool = folder.Path("my sdk tools/the probe.exe");
  fs::create_directories(fs::path(tool).parent_path());
  fs::copy_file(CONSOLE_PROBE, tool);
  for (const char* stranger : {"my", "my.exe"}) {
    tests::WriteText(folder.Path(stranger), "#!/bin/sh\necho stranger\n");
    fs::permissions(folder.Path(stranger), fs::perms::owner_all);
  }
  EXPECT_EQ(RunCommand({tool, {"arguments", "b c"}}).Text, "[b c]\n");
}

TEST(ConsoleCapture, KeepsTheOrderOfBothStreams) {
  const ProbeRun run = RunProbe({"streams"});
  EXPECT_EQ(run.Text, "out0 err0 out1 err1 out2 err2 ");
  EXPECT_EQ(run.Outcome.OutputBytes, run.Text.size());
}

TEST(ConsoleCapture, FillsTheBufferToTheByteAndReadsTheRest) {
  // Bytes printed, bytes of the buffer, bytes of text.
  const struct {
    int Printed, Size;
    size_t Text;
  } cases[] = {{0, 64, 0}, {62, 64, 62}, {63, 64, 63}, {64, 64, 63}, {65, 64, 63}, {300000, 64, 63}, {5, 1, 0}};
  for (const auto& c : cases) {
    const ProbeRun run = RunProbe({"fill", std::to_string(c.Printed)}, QuietOptions(), c.Size);
    EXPECT_EQ(run.Text.size(), c.Text) << c.Printed;
    EXPECT_EQ(run.Outcome.OutputBytes, static_cast<uint64_t>(c.Printed));
    EXPECT_EQ(run.Outcome.Log.Text().size(), static_cast<size_t>(c.Printed));
  }
}

TEST(ConsoleCapture, HandsOverTheTextAsItArrives) {
  ToolRunOptions options = QuietOptions();
  std::string live;
  options.OnText = [&](std::string_view piece) { live += piece; };
  const ProbeRun run = RunProbe({"fill", "200000"}, options, 100);
  EXPECT_EQ(live, run.Outcome.Log.Text());
  EXPECT_EQ(live.substr(0, 99), run.Text);
}

TEST(ConsoleCapture, ReadsAChildThatNeverReadsAndTellsHowItEnded) {
  // The child may be gone before its input is written: that must not end this process.
  for (int i = 0; i < 20; ++i) {
    const ProbeRun run = RunProbe({"exit", "3"});
    EXPECT_FALSE(run.Outcome.Failure);
    ASSERT_TRUE(run.Outcome.End);
    EXPECT_EQ(run.Outcome.End->ExitCode, 3);
  }
}

TEST(ConsoleCapture, WaitsForAGrandchildThatStillPrintsButNotForOneThatIsSilent) {
  EXPECT_THAT(RunProbe({"leave", "300"}).Text, HasSubstr("waited\n"));

  ToolRunOptions options = QuietOptions();
  options.QuietAfterEnd = std::chrono::milliseconds(1500);  // a busy machine is slow to start a child
  const auto start = std::chrono::steady_clock::now();
  const ProbeRun run = RunProbe({"leave", "10000"}, options);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(9000));
  EXPECT_TRUE(run.Outcome.OutputAbandoned);
  EXPECT_THAT(run.Text, StartsWith("process "));
}

TEST(ConsoleCapture, ReportsAToolThatCannotBeStartedAndGoesOn) {
  const ScratchFolder folder;
  WriteText(folder.Path("broken.exe"), "no program at all");
  for (const std::string& program : {folder.Path("missing.exe"), folder.Path("broken.exe"), std::string()}) {
    const ProbeRun run = RunCommand({program, {"-f"}});
    ASSERT_TRUE(run.Outcome.Failure) << program;
    EXPECT_EQ(run.Text, "");
    tests::RecordingReport report;
    ReportFatalSystemError(*run.Outcome.Failure, report);
    ASSERT_EQ(report.Boxes.size(), 1u);
    EXPECT_EQ(report.Boxes[0].Caption, "Error");
    EXPECT_EQ(report.Boxes[0].Icon, core::BoxIcon::None);
    EXPECT_THAT(report.Boxes[0].Text, StartsWith("CreateProcess failed with error "));
    EXPECT_NE(run.Outcome.Failure->Error.Message, "");
  }
}

TEST(ToolRunNotes, TellOfACrashButNotOfAFailure) {
#ifdef _WIN32
  const std::string cause = "exception 0xC0000005";
#else
  const std::string cause = "signal 6";
#endif
  const auto notes = [](const std::vector<std::string>& mode) {
    return RunTool(ToolRun::Vtex, {CONSOLE_PROBE, mode}, QuietOptions()).Notes;
  };
  EXPECT_EQ(notes({"crash"}), "\r\n[The tool crashed: it was ended by " + cause + "]\r\n");
  for (const char* code : {"3", "-1"}) EXPECT_EQ(notes({"exit", code}), "");
}

TEST(WholeLog, KeepsTheFirstAndTheLastHalfOfItsLimit) {
  WholeLog log(8);
  for (const char* piece : {"ab", "cdef", "gh"}) log.Append(piece);
  EXPECT_EQ(log.Text(), "abcdefgh");
  log.Append("ijk");
  EXPECT_EQ(log.Text(), "abcd\r\n[3 bytes of output are left out here]\r\nhijk");
  log.Append("0123456789");
  log.Append("x");
  EXPECT_EQ(log.Text(), "abcd\r\n[14 bytes of output are left out here]\r\n789x");
  EXPECT_EQ(log.Size(), 22u);
}

}  // namespace
}  // namespace tarnwick::tools

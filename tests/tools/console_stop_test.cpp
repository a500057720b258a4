#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#endif

#include "tools/probe_run.h"
#include "tools/tool_run.h"

namespace tarnwick::tools {
namespace {

using std::chrono::milliseconds;

/// Runs the probe and stops it as soon as it has printed `processes` lines that name a process.
ProbeRun RunAndStop(const std::vector<std::string>& arguments, int processes) {
  std::stop_source stop;
  ToolRunOptions options = QuietOptions();
  std::string text;
  options.Stop = stop.get_token();
  options.OnText = [&](std::string_view piece) {
    text += piece;
    int found = 0;
    for (size_t at = text.find("process "); at != std::string::npos; at = text.find("process ", at + 1)) ++found;
    if (found == processes && text.back() == '\n') stop.request_stop();
  };
  return RunProbe(arguments, options);
}

/// Whether the process named in `line` ("process 123") runs, in the sense that it can still do something.
bool Runs(const std::string& line) {
  const std::string number = line.substr(line.find(' ') + 1);
#ifdef _WIN32
  const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, std::stoul(number));
  if (process == nullptr) return false;
  const bool runs = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
  CloseHandle(process);
  return runs;
#else
  std::ifstream file("/proc/" + number + "/stat");
  std::string stat;
  std::getline(file, stat);
  const size_t name = stat.rfind(')');
  return name != std::string::npos && stat[name + 2] != 'Z' && stat[name + 2] != 'X';
#endif
}

/// Whether every process that the text names ends within a second.
bool AllEnd(const std::string& text) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("process ")) continue;
    for (int i = 0; i < 100 && Runs(line); ++i) std::this_thread::sleep_for(milliseconds(10));
    if (Runs(line)) return false;
  }
  return true;
}

TEST(ConsoleStop, EndsAToolThatWaits) {
  const ProbeRun run = RunAndStop({"wait", "30000"}, 1);
  EXPECT_EQ(run.Text.find("waited"), std::string::npos) << "it was not ended, it ended";
  EXPECT_TRUE(run.Outcome.Stopped);
  EXPECT_FALSE(run.Outcome.Failure);
  EXPECT_TRUE(AllEnd(run.Text)) << run.Text;
}

TEST(ConsoleStop, KillsAToolThatIgnoresTheRequest) {
  const ProbeRun run = RunAndStop({"stubborn", "30000"}, 1);
  EXPECT_TRUE(run.Outcome.Stopped);
  EXPECT_TRUE(AllEnd(run.Text)) << run.Text;
}

TEST(ConsoleStop, EndsWhatTheToolStartedAlsoOutsideItsProcessGroup) {
  const ProbeRun parent = RunAndStop({"parent", "30000"}, 2);
  EXPECT_TRUE(parent.Outcome.Stopped);
  EXPECT_TRUE(AllEnd(parent.Text)) << parent.Text;
  // The tool itself is gone long before; what it left holds the output.
  const ProbeRun left = RunAndStop({"leave-apart", "30000"}, 1);
  EXPECT_TRUE(AllEnd(left.Text)) << left.Text;
}

#ifdef __linux__
TEST(ConsoleStop, EndsWhatHasLeftItsGroupItsSessionAndItsEnvironment) {
  const ProbeRun beside = RunAndStop({"daemon", "30000"}, 2);
  EXPECT_TRUE(beside.Outcome.Stopped);
  EXPECT_TRUE(AllEnd(beside.Text)) << beside.Text;
  const ProbeRun alone = RunAndStop({"daemon-alone", "30000"}, 1);
  EXPECT_TRUE(alone.Outcome.Stopped) << "its starter is gone, but it holds the output";
  EXPECT_TRUE(AllEnd(alone.Text)) << alone.Text;
}
#endif

TEST(ConsoleStop, TheTextSaysSo) {
  std::stop_source stop;
  stop.request_stop();
  ToolRunOptions options = QuietOptions();
  options.Stop = stop.get_token();
  const process::Command wait{CONSOLE_PROBE, {"wait", "30000"}};
  const FinishedRun run = RunTool(ToolRun::Vtex, wait, options);
  EXPECT_TRUE(run.Text.starts_with(wait.Line() + "\r\n"));
  EXPECT_EQ(run.Notes, "\r\n[Stopped. The tool and everything that it started were ended]\r\n");
}

}  // namespace
}  // namespace tarnwick::tools

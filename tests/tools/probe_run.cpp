#include "tools/probe_run.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tarnwick::tools {

ToolRunOptions QuietOptions() {
  ToolRunOptions options;
  options.AnnounceStart = false;
  options.StopGrace = std::chrono::milliseconds(200);
  return options;
}

ProbeRun RunCommand(const process::Command& command, const ToolRunOptions& options, int32_t size) {
  constexpr char Guard = 'G';
  std::string buffer(static_cast<size_t>(size) + 1, Guard);
  ConsoleCapture capture;
  capture.Options = options;
  EXPECT_EQ(capture.RunAndCapture(command, buffer.data(), size), 0);
  EXPECT_EQ(buffer.back(), Guard);
  ProbeRun run{buffer.c_str(), std::move(capture.Outcome)};
  std::erase(run.Text, '\r');
  return run;
}

ProbeRun RunProbe(const std::vector<std::string>& arguments, const ToolRunOptions& options, int32_t size) {
  return RunCommand({CONSOLE_PROBE, arguments}, options, size);
}

}  // namespace tarnwick::tools

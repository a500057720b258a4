#pragma once

#include <string>
#include <vector>

#include "tools/console_capture.h"

namespace tarnwick::tools {

/// What a run of the probe gave.
struct ProbeRun {
  std::string Text;  // the buffer up to its NUL, without carriage returns
  ToolRunOutcome Outcome;
};

/// Options for a test: nothing on the tests' own output, short waits.
ToolRunOptions QuietOptions();

/// Runs a tool into a buffer of `size` bytes. Checks that no byte behind the buffer is written.
ProbeRun RunCommand(const process::Command& command, const ToolRunOptions& options = QuietOptions(),
                    int32_t size = 4096);

/// Runs the probe with `arguments`.
ProbeRun RunProbe(const std::vector<std::string>& arguments, const ToolRunOptions& options = QuietOptions(),
                  int32_t size = 4096);

}  // namespace tarnwick::tools

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "core/report.h"
#include "process/child_process.h"
#include "tools/program_start.h"
#include "tools/whole_log.h"

namespace tarnwick::tools {

/// What a worker thread receives to run a tool. The buffer is the caller's and outlives the run.
struct ToolRunRequest {
  process::Command CommandLine;
  char* OutputBuffer = nullptr;
  int32_t OutputSize = 0;  // bytes of the buffer
};

/// As much memory as the machine has: a tool that runs wild is refused more before the whole system stands still. 0
/// where that is not known, and in a build with a sanitizer, whose tools need more than any limit.
uint64_t DefaultMostMemory();

/// What a caller may want of a run beyond its text.
struct ToolRunOptions {
  StartSettings Start;
  /// Gets each piece of the tool's output as it arrives, on the thread of the run.
  std::function<void(std::string_view)> OnText;
  /// Ends the run with all that it started.
  std::stop_token Stop;
  /// Whether the start is told on the program's own standard output, which in a windowed program goes nowhere.
  bool AnnounceStart = true;
  /// When the tool itself has ended but a program that it started still holds its output, the run waits until nothing
  /// has been printed for this long.
  std::chrono::milliseconds QuietAfterEnd{1000};
  /// How long a tool that is asked to stop gets before it is killed.
  std::chrono::milliseconds StopGrace{1000};
  /// The bytes of memory that the tool, and each process that it starts, may have; 0 for no limit.
  uint64_t MostMemory = DefaultMostMemory();
};

/// A step of a run that the system refused.
struct RunFailure {
  std::string Operation;  // the step, such as "CreateProcess"
  process::SystemError Error;

  /// "<Operation> failed with error <Code>: <Message>".
  std::string Text() const;
};

/// What became of a run.
struct ToolRunOutcome {
  std::optional<RunFailure> Failure;       // the tool could not be started or its pipes not be made
  bool Stopped = false;                    // ended through ToolRunOptions::Stop
  bool OutputAbandoned = false;            // something that the tool started still holds its output
  uint64_t OutputBytes = 0;                // everything printed, whatever the buffer held of it
  std::optional<process::ProcessEnd> End;  // unknown for a tool that closed its output and ran on
  WholeLog Log;
};

/// One run of a console tool: the four ends of its two pipes. A new one is made for each run.
struct ConsoleCapture {
  process::PipeEnd ChildStdinRead;    // the child's standard input
  process::PipeEnd ChildStdinWrite;   // this side's
  process::PipeEnd ChildStdoutRead;   // this side's
  process::PipeEnd ChildStdoutWrite;  // the child's standard output and error

  ToolRunOptions Options;
  ToolRunOutcome Outcome;

  /// Runs a tool and returns when its output has ended: always 0. The child gets two
  /// blanks and two NUL bytes as its input and then the end of input, so that a tool that waits for a key goes on.
  /// `outputBuffer` then holds, ended by NUL, what the child printed on both streams in order, at most `outputSize` - 1
  /// bytes; `Outcome` holds the rest. A step that fails ends the run and is told in `Outcome.Failure`.
  int RunAndCapture(const process::Command& command, char* outputBuffer, int32_t outputSize);
};

/// Shows the box that tells of a run's failed step. The program goes on.
void ReportFatalSystemError(const RunFailure& failure, core::Report& report);

}  // namespace tarnwick::tools

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "process/child_process.h"

namespace tarnwick::process {

/// How a run is followed, and when it is cut short.
struct RunOptions {
  /// Gets each piece of the output as it arrives, on the thread of the run.
  std::function<void(std::string_view)> OnText = {};
  /// Ends the run with all that it started.
  std::stop_token Stop = {};
  /// The longest time that the run may take.
  std::optional<std::chrono::milliseconds> Deadline = {};
  /// The bytes of output at which the run is ended.
  uint64_t MostOutput = std::numeric_limits<uint64_t>::max();
  /// When the child itself has ended but a program that it started still holds its output, the run waits until nothing
  /// has been printed for this long.
  std::chrono::milliseconds QuietAfterEnd{1000};
  /// How long a child that is asked to stop gets before it is killed.
  std::chrono::milliseconds StopGrace{1000};
};

/// What cut a run short.
enum class RunCut { None, Stopped, TimedOut, TooMuch };

/// What became of a run.
struct RunOutcome {
  RunCut Cut = RunCut::None;
  bool OutputAbandoned = false;   // something that the child started still holds its output
  uint64_t OutputBytes = 0;       // printed in all
  std::optional<ProcessEnd> End;  // unknown for a child that closed its output and ran on
};

/// Reads what `child`, just started, prints to the other end of `output`, until that has ended, and collects the child.
/// This side's copy of the end that the child writes to is closed already. After a cut the child and all that it
/// started are ended before this returns.
[[nodiscard]] RunOutcome FollowToEnd(ChildProcess& child, PipeEnd& output, const RunOptions& options);

/// A run whose output is kept.
struct CapturedRun {
  std::optional<SystemError> NotStarted;
  std::string Output;
  RunOutcome Outcome;
};

/// Runs a program without input and returns when its output has ended. Several may run at once.
CapturedRun RunAndKeep(const Command& command, const StartOptions& start, const RunOptions& options);

}  // namespace tarnwick::process

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "process/command.h"
#include "process/pipe_end.h"

namespace tarnwick::process {

/// How a child process ended.
struct ProcessEnd {
  int ExitCode = 0;
  int Signal = 0;  // the signal that ended it, or 0
};

/// What ended a program that did not end by itself, such as "signal 11" or "exception 0xC0000005"; "" for one that did.
[[nodiscard]] std::string CrashCause(const ProcessEnd& end);

/// Where a child's words go besides its standard output.
enum class ErrorOutput {
  WithOutput,  // to its standard output, in order
  Dropped,
  Inherited,  // to this program's
};

/// How a child process starts.
struct StartOptions {
  /// Settings ("NAME=value") in the place of this process's own of the same name (POSIX).
  std::vector<std::string> Environment = {};
  ErrorOutput Errors = ErrorOutput::WithOutput;
  /// Names of processes, as the system lists them, that the child may start but that serve others too: they are not
  /// ended with the child (POSIX).
  std::span<const std::string_view> Shared = {};
  /// Whether the child gets a minder (`tarnwick-minder` beside the running program), by which its end also reaches what
  /// has left its group and session and cleared its environment (Linux; on Windows a job object always does that).
  bool Minded = false;
  /// The bytes of memory that the child, and each process that it starts, may have for itself; 0 for no limit. Address
  /// space that is only reserved, as Wine does, does not count (Linux, Windows).
  uint64_t MostMemory = 0;
  /// Whether the child, which reads what strangers wrote, gets no right that it can do without: none of the user's
  /// privileges and no administrator's rights, no other process, no console, and an end when this program ends
  /// (Windows; elsewhere a child sees to that itself).
  bool LeastRights = false;
};

/// A running child process and everything that it starts. Destroying the object leaves the child running.
class ChildProcess {
 public:
  ChildProcess();
  ChildProcess(ChildProcess&&) noexcept;
  ChildProcess& operator=(ChildProcess&&) noexcept;
  ~ChildProcess();

  /// Starts the program whose file is at `command.Program`, with its arguments to the byte: no window, `input` as its
  /// standard input (none if that is not open), `output` as its standard output, this process's current directory, and
  /// nothing else that this process has open. A program that cannot be started is told by the system's error.
  [[nodiscard]] std::optional<SystemError> Start(const Command& command, const PipeEnd& input, const PipeEnd& output,
                                                 const StartOptions& options = {});

  /// Whether the child itself has ended; what it started may run on.
  [[nodiscard]] bool HasEnded();
  /// Asks the child and all that it started to end (POSIX); ends them at once (Windows).
  void Terminate();
  /// Ends the child and all that it started at once.
  void Kill();
  /// How the child ended, once; nothing while it runs. No other call follows a call that told.
  std::optional<ProcessEnd> Collect();

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

/// Starts a program as a shell does that opens it: in a session of its own, without input or output, not waited for.
[[nodiscard]] std::optional<SystemError> StartDetached(const Command& command, const StartOptions& options = {});

}  // namespace tarnwick::process

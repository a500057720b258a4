#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace tarnwick::tools {

/// What the system said when a call failed: its error code and its message for that code.
struct SystemError {
  int Code = 0;
  std::string Message;
};

/// One end of a pipe, or nothing. Closed when the object goes away.
class PipeEnd {
 public:
  PipeEnd() = default;
  explicit PipeEnd(intptr_t handle) : m_handle(handle) {}
  PipeEnd(PipeEnd&& other) noexcept : m_handle(other.m_handle) { other.m_handle = None; }
  /// Closes the end that it was before.
  PipeEnd& operator=(PipeEnd&& other) noexcept {
    PipeEnd taken(std::move(other));
    std::swap(m_handle, taken.m_handle);
    return *this;
  }
  ~PipeEnd() { Close(); }

  bool IsOpen() const { return m_handle != None; }
  /// The descriptor, or the HANDLE, as a number.
  intptr_t Handle() const { return m_handle; }
  /// Closes the end; nothing happens if there is none. Tells what failed.
  std::optional<SystemError> Close();

 private:
  static constexpr intptr_t None = -1;
  intptr_t m_handle = None;
};

/// Makes an anonymous pipe whose ends a child can inherit.
std::optional<SystemError> CreateInheritablePipe(PipeEnd& read, PipeEnd& write);

/// Keeps children from inheriting `end`.
std::optional<SystemError> StopInheriting(PipeEnd& end);

/// Writes `size` bytes; whether that worked is not told, since the reader may be gone.
void WriteToPipe(PipeEnd& end, const char* bytes, size_t size);

/// What a read that waits for a limited time found.
struct PipeRead {
  enum class Kind { Bytes, Nothing, End };
  Kind Found = Kind::End;
  size_t Size = 0;
};

/// Reads up to `size` bytes as soon as there are any. `Nothing` after `wait` without one; `End` when the last writing
/// end is closed, and after any failure.
PipeRead ReadFromPipe(PipeEnd& end, char* target, size_t size, std::chrono::milliseconds wait);

/// How a child process ended.
struct ProcessEnd {
  int ExitCode = 0;
  int Signal = 0;  // the signal that ended it, or 0
};

/// What is said about a program before its first start.
struct StartSettings {
  /// The program that runs Windows programs on other systems; empty to look for `wine`, then `wine64`.
  std::string WineProgram;
};

/// A running child process and everything that it starts. Destroying the object leaves the child running.
class ChildProcess {
 public:
  ChildProcess();
  ChildProcess(ChildProcess&&) noexcept;
  ChildProcess& operator=(ChildProcess&&) noexcept;
  ~ChildProcess();

  /// Starts the program that `commandLine` begins with: no window, `input` as its standard input, `output` as its
  /// standard output and error, this process's environment and current directory. On Windows the line is handed over
  /// as it is. Elsewhere it is read as `ProgramReadings` and `SplitArguments` tell; a Windows program runs through
  /// Wine, with WINEDEBUG=-all and with arguments that are absolute paths in Wine's form (Z:\...), and a native one
  /// directly.
  std::optional<SystemError> Start(const std::string& commandLine, const PipeEnd& input, const PipeEnd& output,
                                   const StartSettings& settings);

  /// Whether the child itself has ended; what it started may run on.
  bool HasEnded();
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

/// Starts `program` (found as `FindToolFile` does) with the arguments in `parameters`, as a shell does that opens it:
/// in a session of its own, without input or output, not waited for.
std::optional<SystemError> LaunchDetached(const std::string& program, const std::string& parameters,
                                          const StartSettings& settings);

}  // namespace tarnwick::tools

#include "tools/console_capture.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <thread>

namespace tarnwick::tools {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Answers a prompt that waits for a key.
constexpr char ChildInput[4] = {' ', ' ', 0, 0};

/// How often a silent run looks whether it is to stop and whether the tool has ended.
constexpr milliseconds PollInterval{20};
/// How long after a kill the output may take to end: what could not be killed must not hold the caller.
constexpr milliseconds AfterKill{2000};

/// The caller's buffer, filled up to its size and ended by NUL in its last byte at the latest.
class CallersBuffer {
 public:
  CallersBuffer(char* buffer, int32_t size) : m_buffer(buffer), m_size(size > 0 ? static_cast<size_t>(size) : 0) {}

  void Append(std::string_view bytes) {
    const size_t count = std::min(bytes.size(), m_size - m_total);
    if (count > 0) std::memcpy(m_buffer + m_total, bytes.data(), count);
    m_total += count;
  }
  void End() {
    if (m_size > 0) m_buffer[std::min(m_total, m_size - 1)] = 0;
  }

 private:
  char* m_buffer;
  size_t m_size;
  size_t m_total = 0;
};

/// The run from the child's start to the end of its output.
class RunningTool {
 public:
  RunningTool(ConsoleCapture& capture, ChildProcess& child, CallersBuffer& buffer)
      : m_options(capture.Options),
        m_outcome(capture.Outcome),
        m_output(capture.ChildStdoutRead),
        m_child(child),
        m_buffer(buffer) {}

  void ReadToTheEnd() {
    m_lastText = Clock::now();
    while (true) {
      const PipeRead read = ReadFromPipe(m_output, m_block.data(), m_block.size(), PollInterval);
      if (read.Found == PipeRead::Kind::End) return;
      if (read.Found == PipeRead::Kind::Bytes) Take(std::string_view(m_block.data(), read.Size));
      AdvanceStop();
      if (IsKilledFor(AfterKill) || HoldsOnSilently(read)) {
        m_outcome.OutputAbandoned = true;
        return;
      }
    }
  }

  /// Learns how the tool ended. One that closed its output and runs on is left alone, unless it was to stop.
  void WaitForEnd() {
    const auto start = Clock::now();
    while (!m_outcome.End) {
      // Once the child is collected, its group's number may become another's: what it left behind goes first.
      if (m_outcome.Stopped && m_child.HasEnded()) m_child.Kill();
      m_outcome.End = m_child.Collect();
      if (m_outcome.End) return;
      AdvanceStop();
      const bool waitedEnough = m_outcome.Stopped ? IsKilledFor(AfterKill) : Since(start) >= m_options.QuietAfterEnd;
      if (waitedEnough) return;
      std::this_thread::sleep_for(milliseconds(2));
    }
  }

 private:
  static milliseconds Since(Clock::time_point start) {
    return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
  }

  void Take(std::string_view text) {
    m_lastText = Clock::now();
    m_outcome.OutputBytes += text.size();
    m_outcome.Log.Append(text);
    m_buffer.Append(text);
    if (m_options.OnText) m_options.OnText(text);
  }

  /// First asks, then kills; kills again on later calls, since a process may have been started in between.
  void AdvanceStop() {
    if (m_options.Stop == nullptr || !m_options.Stop->load()) return;
    if (!m_outcome.Stopped) {
      m_outcome.Stopped = true;
      m_stopAsked = Clock::now();
      m_child.Terminate();
    } else if (Since(m_stopAsked) >= m_options.StopGrace) {
      if (!m_killed) m_killed = Clock::now();
      m_child.Kill();
    }
  }

  bool IsKilledFor(milliseconds time) const { return m_killed && Since(*m_killed) >= time; }

  /// Whether only what the tool started still holds the pipe, without a word.
  bool HoldsOnSilently(const PipeRead& read) {
    if (read.Found != PipeRead::Kind::Nothing || m_outcome.Stopped) return false;
    if (!m_toolEnded && m_child.HasEnded()) {
      m_toolEnded = true;
      m_lastText = Clock::now();
    }
    return m_toolEnded && Since(m_lastText) >= m_options.QuietAfterEnd;
  }

  const ToolRunOptions& m_options;
  ToolRunOutcome& m_outcome;
  PipeEnd& m_output;
  ChildProcess& m_child;
  CallersBuffer& m_buffer;
  std::array<char, 1 << 16> m_block;
  Clock::time_point m_lastText;
  Clock::time_point m_stopAsked;
  std::optional<Clock::time_point> m_killed;
  bool m_toolEnded = false;
};

}  // namespace

std::string RunFailure::Text() const {
  return Operation + " failed with error " + std::to_string(Error.Code) + ": " + Error.Message;
}

int ConsoleCapture::RunAndCapture(const std::string& commandLine, char* outputBuffer, int32_t outputSize) {
  CallersBuffer buffer(outputBuffer, outputSize);
  buffer.End();
  const auto failed = [this](const char* operation, const std::optional<SystemError>& error) {
    if (error) Outcome.Failure = RunFailure{operation, *error};
    return error.has_value();
  };

  if (Options.AnnounceStart) std::fputs("\n->Start of parent execution.\n", stdout);
  if (failed("StdoutRd CreatePipe", CreateInheritablePipe(ChildStdoutRead, ChildStdoutWrite))) return 0;
  if (failed("Stdout SetHandleInformation", StopInheriting(ChildStdoutRead))) return 0;
  if (failed("Stdin CreatePipe", CreateInheritablePipe(ChildStdinRead, ChildStdinWrite))) return 0;
  if (failed("Stdin SetHandleInformation", StopInheriting(ChildStdinWrite))) return 0;
  ChildProcess child;
  if (failed("CreateProcess", child.Start(commandLine, ChildStdinRead, ChildStdoutWrite, Options.Start))) return 0;

  WriteToPipe(ChildStdinWrite, ChildInput, sizeof ChildInput);
  // From here on the child runs: a failure is told, and its text is read all the same.
  failed("StdInWr CloseHandle", ChildStdinWrite.Close());
  ChildStdinRead.Close();
  // As long as this side holds the child's end, the end of the output cannot be seen.
  failed("StdOutWr CloseHandle", ChildStdoutWrite.Close());

  RunningTool tool(*this, child, buffer);
  tool.ReadToTheEnd();
  buffer.End();
  tool.WaitForEnd();
  ChildStdoutRead.Close();
  return 0;
}

void ReportFatalSystemError(const RunFailure& failure, core::Report& report) {
  report.Tell(
      {.Kind = core::TroubleKind::Tool, .Text = failure.Text(), .Caption = "Error", .Icon = core::BoxIcon::None});
}

}  // namespace tarnwick::tools

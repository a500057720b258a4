#include "process/run.h"

#include <array>
#include <thread>

namespace tarnwick::process {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// How often a silent run looks whether it is to stop and whether the child has ended.
constexpr milliseconds PollInterval{20};
/// How long after a kill the output may take to end: what could not be killed must not hold the caller.
constexpr milliseconds AfterKill{2000};

/// The run from the child's start to its end.
class FollowedRun {
 public:
  FollowedRun(ChildProcess& child, PipeEnd& output, const RunOptions& options)
      : m_options(options), m_output(output), m_child(child) {}

  RunOutcome Follow() {
    ReadToTheEnd();
    WaitForEnd();
    return m_outcome;
  }

 private:
  static milliseconds Since(Clock::time_point start) {
    return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
  }

  void ReadToTheEnd() {
    while (true) {
      const PipeRead read = ReadFromPipe(m_output, m_block.data(), m_block.size(), PollInterval);
      if (read.Found == PipeRead::Kind::End) return;
      if (read.Found == PipeRead::Kind::Bytes) Take(std::string_view(m_block.data(), read.Size));
      AdvanceCut();
      if (IsKilledFor(AfterKill) || HoldsOnSilently(read)) {
        m_outcome.OutputAbandoned = true;
        return;
      }
    }
  }

  /// Learns how the child ended. One that closed its output and runs on is left alone, unless it was to end.
  void WaitForEnd() {
    const auto start = Clock::now();
    while (!m_outcome.End) {
      // Once the child is collected, its group's number may become another's: what it left behind goes first.
      if (IsCut() && m_child.HasEnded()) m_child.Kill();
      m_outcome.End = m_child.Collect();
      if (m_outcome.End) return;
      AdvanceCut();
      const bool waitedEnough = IsCut() ? IsKilledFor(AfterKill) : Since(start) >= m_options.QuietAfterEnd;
      if (waitedEnough) return;
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
  }

  void Take(std::string_view text) {
    m_lastText = Clock::now();
    m_outcome.OutputBytes += text.size();
    if (m_options.OnText) m_options.OnText(text);
  }

  bool IsCut() const { return m_outcome.Cut != RunCut::None; }

  /// A run that is stopped is asked first and then killed, any other cut kills. Kills again on later calls, since a
  /// process may have been started in between.
  void AdvanceCut() {
    if (!IsCut()) Cut();
    if (!IsCut()) return;
    const bool asked = m_outcome.Cut == RunCut::Stopped && Since(m_cutAt) < m_options.StopGrace;
    if (asked) return;
    if (!m_killed) m_killed = Clock::now();
    m_child.Kill();
  }

  void Cut() {
    if (m_options.Stop.stop_requested()) m_outcome.Cut = RunCut::Stopped;
    if (m_options.Deadline && Since(m_started) >= *m_options.Deadline) m_outcome.Cut = RunCut::TimedOut;
    if (m_outcome.OutputBytes > m_options.MostOutput) m_outcome.Cut = RunCut::TooMuch;
    m_cutAt = Clock::now();
    if (m_outcome.Cut == RunCut::Stopped) m_child.Terminate();
  }

  bool IsKilledFor(milliseconds time) const { return m_killed && Since(*m_killed) >= time; }

  /// Whether only what the child started still holds the pipe, without a word.
  bool HoldsOnSilently(const PipeRead& read) {
    if (read.Found != PipeRead::Kind::Nothing || IsCut()) return false;
    if (!m_childEnded && m_child.HasEnded()) {
      m_childEnded = true;
      m_lastText = Clock::now();
    }
    return m_childEnded && Since(m_lastText) >= m_options.QuietAfterEnd;
  }

  const RunOptions& m_options;
  PipeEnd& m_output;
  ChildProcess& m_child;
  RunOutcome m_outcome;
  std::array<char, 1 << 16> m_block;
  const Clock::time_point m_started = Clock::now();
  Clock::time_point m_lastText = m_started;
  Clock::time_point m_cutAt;
  std::optional<Clock::time_point> m_killed;
  bool m_childEnded = false;
};

}  // namespace

RunOutcome FollowToEnd(ChildProcess& child, PipeEnd& output, const RunOptions& options) {
  return FollowedRun(child, output, options).Follow();
}

CapturedRun RunAndKeep(const Command& command, const StartOptions& start, const RunOptions& options) {
  CapturedRun run;
  PipeEnd read;
  PipeEnd write;
  ChildProcess child;
  run.NotStarted = CreateInheritablePipe(read, write);
  if (!run.NotStarted) run.NotStarted = StopInheriting(read);
  if (!run.NotStarted) run.NotStarted = child.Start(command, {}, write, start);
  if (run.NotStarted) return run;
  write.Close();
  RunOptions kept = options;
  kept.OnText = [&](std::string_view text) {
    run.Output += text;
    if (options.OnText) options.OnText(text);
  };
  run.Outcome = FollowToEnd(child, read, kept);
  return run;
}

}  // namespace tarnwick::process

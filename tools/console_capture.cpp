#include "tools/console_capture.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "process/run.h"

namespace tarnwick::tools {

namespace {

/// Answers a prompt that waits for a key.
constexpr char ChildInput[4] = {' ', ' ', 0, 0};

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

}  // namespace

std::string RunFailure::Text() const {
  return Operation + " failed with error " + std::to_string(Error.Code) + ": " + Error.Message;
}

int ConsoleCapture::RunAndCapture(const process::Command& command, char* outputBuffer, int32_t outputSize) {
  CallersBuffer buffer(outputBuffer, outputSize);
  buffer.End();
  const auto failed = [this](const char* operation, const std::optional<process::SystemError>& error) {
    if (error) Outcome.Failure = RunFailure{operation, *error};
    return error.has_value();
  };

  if (Options.AnnounceStart) std::fputs("\n->Start of parent execution.\n", stdout);
  if (failed("StdoutRd CreatePipe", process::CreateInheritablePipe(ChildStdoutRead, ChildStdoutWrite))) return 0;
  if (failed("Stdout SetHandleInformation", process::StopInheriting(ChildStdoutRead))) return 0;
  if (failed("Stdin CreatePipe", process::CreateInheritablePipe(ChildStdinRead, ChildStdinWrite))) return 0;
  if (failed("Stdin SetHandleInformation", process::StopInheriting(ChildStdinWrite))) return 0;
  ProgramStart start;
  process::ChildProcess child;
  if (failed("CreateProcess", PrepareStart(command, Options.Start, start))) return 0;
  start.Options.Minded = true;
  start.Options.MostMemory = Options.MostMemory;
  if (failed("CreateProcess", child.Start(start.Command, ChildStdinRead, ChildStdoutWrite, start.Options))) return 0;

  process::WriteToPipe(ChildStdinWrite, ChildInput, sizeof ChildInput);
  // From here on the child runs: a failure is told, and its text is read all the same.
  failed("StdInWr CloseHandle", ChildStdinWrite.Close());
  ChildStdinRead.Close();
  // As long as this side holds the child's end, the end of the output cannot be seen.
  failed("StdOutWr CloseHandle", ChildStdoutWrite.Close());

  process::RunOptions run;
  run.OnText = [&](std::string_view text) {
    Outcome.Log.Append(text);
    buffer.Append(text);
    if (Options.OnText) Options.OnText(text);
  };
  run.Stop = Options.Stop;
  run.QuietAfterEnd = Options.QuietAfterEnd;
  run.StopGrace = Options.StopGrace;
  const process::RunOutcome ended = process::FollowToEnd(child, ChildStdoutRead, run);
  buffer.End();
  Outcome.Stopped = ended.Cut == process::RunCut::Stopped;
  Outcome.OutputAbandoned = ended.OutputAbandoned;
  Outcome.OutputBytes = ended.OutputBytes;
  Outcome.End = ended.End;
  ChildStdoutRead.Close();
  return 0;
}

void ReportFatalSystemError(const RunFailure& failure, core::Report& report) {
  report.Tell(
      {.Kind = core::TroubleKind::Tool, .Text = failure.Text(), .Caption = "Error", .Icon = core::BoxIcon::None});
}

}  // namespace tarnwick::tools

#include "images/image_worker.h"

#include <chrono>
#include <csignal>

#include "core/paths.h"
#include "core/program_directory.h"
#include "core/sanitized.h"
#include "images/limits.h"
#include "process/run.h"

namespace tarnwick::images {

namespace {

#ifdef _WIN32
constexpr std::string_view WorkerName = "tarnwick-imageworker.exe";
#else
constexpr std::string_view WorkerName = "tarnwick-imageworker";
#endif

constexpr size_t LongestLine = 65536;  // bytes of an answer without its pixels, the list of formats included

std::string Native(const std::string& path) {
  return core::PathText(core::NativePath(path));
}

#if TARNWICK_SANITIZED  // a sanitizer's report is worth seeing
constexpr process::ErrorOutput WorkersErrors = process::ErrorOutput::Inherited;
#else
constexpr process::ErrorOutput WorkersErrors = process::ErrorOutput::Dropped;
#endif

/// What a limit of the system's has cut short.
std::string LimitCause([[maybe_unused]] const process::ProcessEnd& end) {
#ifdef _WIN32
  constexpr int OutOfTime = 1816;  // ERROR_NOT_ENOUGH_QUOTA, as which a job ends what has used its time up
  if (end.ExitCode == OutOfTime) return "it took too long";
#else
  if (end.Signal == SIGXCPU) return "it took too long";
  if (end.Signal == SIGXFSZ) return "its result grew too large";
#endif
  return {};
}

/// What is left when the worker gave no answer that can be used.
std::string Reason(const process::CapturedRun& run, const std::string& program) {
  if (run.NotStarted) return program + " cannot be started: " + run.NotStarted->Message;
  constexpr std::string_view Failed = "the image could not be worked on: ";
  if (run.Outcome.Cut == process::RunCut::TimedOut) return std::string(Failed) + "it took too long";
  if (run.Outcome.Cut == process::RunCut::Stopped) return "stopped";
  if (run.Outcome.Cut == process::RunCut::TooMuch) return std::string(Failed) + "it answered too much";
  const process::ProcessEnd end = run.Outcome.End.value_or(process::ProcessEnd{});
  if (const std::string cause = LimitCause(end); !cause.empty()) return std::string(Failed) + cause;
  const std::string crash = process::CrashCause(end);
  if (!crash.empty()) return std::string(Failed) + "it was ended by the system: " + crash;
  return program + " ended without an answer";
}

bool HasEndedByItself(const process::CapturedRun& run) {
  return !run.NotStarted && run.Outcome.Cut == process::RunCut::None &&
         process::CrashCause(run.Outcome.End.value_or(process::ProcessEnd{})).empty();
}

}  // namespace

ImageWorker::ImageWorker() : m_path(core::ProgramDirectory() + core::PathSeparator + std::string(WorkerName)) {}

WorkerAnswer ImageWorker::Run(const WorkerRequest& request) const {
  WorkerAnswer answer;
  if (m_stop.stop_requested()) {
    answer.Stopped = true;
    answer.Reason = "stopped";
    return answer;
  }
  WorkerRequest native = request;
  native.FamiliarOnly = m_familiarOnly;
  native.Source = Native(request.Source);
  native.Alpha = Native(request.Alpha);
  native.Output = Native(request.Output);
  const size_t pixels = static_cast<size_t>(request.Side) * static_cast<size_t>(request.Side) * 4;

  process::StartOptions start;
  start.Errors = WorkersErrors;
  start.LeastRights = true;
  process::RunOptions limits;
  limits.Deadline = std::chrono::seconds(LongestRun);
  limits.MostOutput = LongestLine + pixels;
  limits.Stop = m_stop;
  limits.StopGrace = {};  // it holds nothing that it could put in order
  const process::CapturedRun run = process::RunAndKeep({Native(m_path), ToArguments(native)}, start, limits);
  if (HasEndedByItself(run)) {
    if (auto parsed = ParseAnswer(run.Output)) return *std::move(parsed);
  }
  answer.Stopped = run.Outcome.Cut == process::RunCut::Stopped;
  answer.Reason = Reason(run, m_path);
  return answer;
}

}  // namespace tarnwick::images

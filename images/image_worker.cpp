#include "images/image_worker.h"

#include "core/paths.h"
#include "core/program_directory.h"
#include "images/child_process.h"
#include "images/limits.h"

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

/// What is left when the worker gave no answer that can be used.
std::string Reason(const ChildResult& child, const std::string& program) {
  switch (child.Ending) {
    case ChildResult::End::NotStarted:
      return program + " cannot be started: " + child.Reason;
    case ChildResult::End::Exited:
      return program + " ended without an answer";
    default:
      return "the image could not be worked on: " + child.Reason;
  }
}

}  // namespace

ImageWorker::ImageWorker() : m_path(core::ProgramDirectory() + core::PathSeparator + std::string(WorkerName)) {}

WorkerAnswer ImageWorker::Run(const WorkerRequest& request) const {
  WorkerRequest native = request;
  native.FamiliarOnly = m_familiarOnly;
  native.Source = Native(request.Source);
  native.Alpha = Native(request.Alpha);
  native.Output = Native(request.Output);
  const size_t pixels = static_cast<size_t>(request.Side) * static_cast<size_t>(request.Side) * 4;

  const ChildResult child = RunChild(m_path, ToArguments(native), LongestLine + pixels, static_cast<int>(LongestRun));
  WorkerAnswer answer;
  if (child.Ending == ChildResult::End::Exited) {
    if (auto parsed = ParseAnswer(child.Output)) return *std::move(parsed);
  }
  answer.Reason = Reason(child, m_path);
  return answer;
}

}  // namespace tarnwick::images

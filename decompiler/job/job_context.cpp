#include "decompiler/job/job_context.h"

#include <algorithm>
#include <utility>

#include "core/paths.h"

namespace tarnwick::decompiler {

JobContext::JobContext(const DecompileJob& job, core::Report& report)
    : ModelReader(static_cast<core::TroubleSink&>(*this), job.Files != nullptr ? *job.Files : core::DiskFiles()),
      m_job(job),
      m_report(report),
      m_files(job.Helpers) {
  SetSpendLimit(job.OutputLimit);
}

void JobContext::Tell(const core::Trouble& trouble) {
  const bool isWarning = trouble.Level == core::Severity::Warning;
  if (trouble.Level == core::Severity::Note) return Log(trouble.Text + "\r\n");
  if (isWarning && trouble.Kind == core::TroubleKind::Mismatch && !ReadyToCompile()) return;
  if (trouble.Caption.empty()) Log((isWarning ? "Warning: " : "Error: ") + trouble.Text + "\r\n");
  Keep(trouble);
}

void JobContext::Keep(core::Trouble trouble) {
  m_report.Tell(trouble);
  m_result.Troubles.push_back(std::move(trouble));
}

void JobContext::Warn(std::string text, core::TroubleKind kind) {
  Tell({.Level = core::Severity::Warning, .Kind = kind, .Text = std::move(text)});
}

void JobContext::LogError(std::string text, core::TroubleKind kind, std::string alike) {
  Tell({.Kind = kind, .Text = std::move(text), .Alike = std::move(alike)});
}

void JobContext::RecordError(std::string text, core::TroubleKind kind, std::string alike) {
  Keep({.Kind = kind, .Text = std::move(text), .Alike = std::move(alike)});
}

void JobContext::Lose(std::string_view kind, int64_t count) {
  if (!ReadyToCompile() || count <= 0) return;
  for (LostKind& lost : m_result.Lost) {
    if (lost.Kind != kind) continue;
    lost.Count += count;
    return;
  }
  m_result.Lost.push_back({std::string(kind), count});
}

void JobContext::CleanOnce(std::string_view kind, std::string_view how) {
  if (m_cleaned.emplace(kind).second) Warn("The model holds " + std::string(kind) + "; they " + std::string(how));
}

void JobContext::TellLost() {
  for (const LostKind& lost : m_result.Lost) {
    Log("Lost: " + lost.Kind + ": " + std::to_string(lost.Count) + "\r\n");
  }
}

void JobContext::Error(std::string_view text, std::string_view caption, core::TroubleKind kind, std::string file,
                       std::string alike, std::string details) {
  Tell({.Kind = kind,
        .File = std::move(file),
        .Text = std::string(text),
        .Caption = std::string(caption),
        .Details = std::move(details),
        .Alike = std::move(alike)});
}

bool JobContext::ScriptWithinBounds() {
  const auto written = static_cast<int64_t>(m_script->BytesWritten());
  return Spend(written - std::exchange(m_scriptCharged, written));
}

bool JobContext::Stopped() {
  if (m_job.StopRequested == nullptr || !m_job.StopRequested->load()) return false;
  if (!std::exchange(m_stopTold, true))
    Error("The job was stopped; the sources are not complete", "Stopped", core::TroubleKind::Stopped);
  return true;
}

std::string JobContext::OutputPath(std::string_view name) const {
  return m_job.OutputDirectory + core::PathSeparator + std::string(name);
}

std::optional<core::OutputFile> JobContext::Create(std::string_view name, std::string* reason) {
  if (!StaysInside(name)) {
    if (reason != nullptr) *reason = "the name leads out of the output directory";
    return std::nullopt;
  }
  std::string path = OutputPath(name);
  if (!m_begunNames.insert(FileKey(name)).second) {
    FinishFiles();
    m_rewrittenPaths.insert(path);
  }
  core::FileMaker& output = m_job.Output != nullptr ? *m_job.Output : core::DiskStore();
  auto file = output.Create(std::move(path), reason);
  if (file) {
    m_progress.File = name;
    ++m_progress.FilesBegun;
    m_progress.FilesDone = m_files.DoneCount();
    if (m_job.Progress) m_job.Progress(m_progress);
  }
  return file;
}

void JobContext::WriteFile(core::OutputFile file, FileBatch::WriteFunction write) {
  m_files.Add(std::move(file), std::move(write));
}

void JobContext::FinishScript(core::OutputFile& script) {
  if (!script.Commit()) {
    Error("Error writing " + script.Path() + ": " + script.Error(), "File Error", core::TroubleKind::Unwritable,
          script.Path(), "Error writing a file: " + script.Error());
    return;
  }
  m_result.Files.insert(m_result.Files.begin(), {script.Path(), script.Size()});
}

void JobContext::Record(FileOutcome& outcome) {
  if (m_rewrittenPaths.count(outcome.Path) != 0) {
    std::erase_if(m_result.Files, [&](const WrittenFile& file) { return file.Path == outcome.Path; });
  }
  m_result.Files.push_back({std::move(outcome.Path), outcome.Size});
}

void JobContext::FinishFiles() {
  for (FileOutcome& outcome : m_files.Finish()) {
    if (!outcome.Error.empty()) {
      Error("Error writing " + outcome.Path + ": " + outcome.Error, "File Error", core::TroubleKind::Unwritable,
            outcome.Path, "Error writing a file: " + outcome.Error);
    } else if (!outcome.Discarded) {
      if (outcome.NonFinite > 0) {
        Warn(outcome.Path + " holds " + std::to_string(outcome.NonFinite) +
             (outcome.NonFinite == 1 ? " number that is not finite" : " numbers that are not finite"));
      }
      Record(outcome);
    }
  }
  m_progress.FilesDone = m_files.DoneCount();
  if (m_job.Progress) m_job.Progress(m_progress);
}

}  // namespace tarnwick::decompiler

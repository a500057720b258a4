#include "decompiler/job_context.h"

#include <algorithm>
#include <utility>

#include "core/paths.h"

namespace tarnwick::decompiler {

namespace {

constexpr int64_t MebiByte = int64_t{1} << 20;
constexpr int64_t SpendBase = 256 * MebiByte;
constexpr int64_t SpendForEachByteRead = 1024;

}  // namespace

JobContext::JobContext(const DecompileJob& job, core::Report& report)
    : m_job(job), m_report(report), m_files(job.Helpers) {}

void JobContext::Warn(std::string text) {
  Log("Warning: " + text + "\r\n");
  m_result.Warnings.push_back(std::move(text));
}

void JobContext::LogError(std::string text) {
  Log("Error: " + text + "\r\n");
  m_result.Errors.push_back(std::move(text));
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

void JobContext::TellLost() {
  for (const LostKind& lost : m_result.Lost) {
    Log("Lost: " + lost.Kind + ": " + std::to_string(lost.Count) + "\r\n");
  }
}

void JobContext::Error(std::string_view text, std::string_view caption) {
  m_result.Errors.push_back(std::string(caption) + ": " + std::string(text));
  m_report.ErrorBox(text, caption);
}

void JobContext::Damaged(const std::string& path, std::string_view what, int64_t offset, std::string_view problem) {
  Error(path + ": the " + std::string(what) + " at byte " + std::to_string(offset) + " " + std::string(problem),
        "Damaged File");
}

void JobContext::DamagedTable(const std::string& path, std::string_view what, int64_t offset, int64_t count,
                              int64_t size) {
  const std::string records = " (" + std::to_string(count) + (count == 1 ? " record)" : " records)");
  const std::string_view problem = offset < 0  ? " begins before the start of the file"
                                   : count < 0 ? " has a negative count"
                                               : " runs past the end of the file";
  Error(path + ": the " + std::string(what) + " at byte " + std::to_string(offset) + records + std::string(problem) +
            " (" + std::to_string(size) + " bytes)",
        "Damaged File");
}

void JobContext::DamagedName(std::string_view what, int64_t offset) {
  Damaged(Model.Mdl.Path(), what, offset,
          "is no text inside the file of at most " + std::to_string(LongestName) + " bytes");
}

bool JobContext::Spend(int64_t bytes) {
  const int64_t limit =
      m_job.OutputLimit > 0
          ? m_job.OutputLimit
          : SpendBase + SpendForEachByteRead * (Model.View().Size() + (Model.Vtx ? Model.Vtx->View().Size() : 0) +
                                                (Model.Vertices ? Model.Vertices->File.View().Size() : 0) +
                                                (Model.AnimBlocks ? Model.AnimBlocks->File.View().Size() : 0));
  m_spent = std::min(m_spent, limit) + std::clamp<int64_t>(bytes, 0, limit + 1);
  if (m_spent <= limit) return true;
  if (!std::exchange(m_limitTold, true)) {
    Error(Model.Mdl.Path() + ": the model asks for more than " + std::to_string(limit / MebiByte) +
              " MiB of output, which no sound model of its size does; the rest is left out",
          "Damaged File");
  }
  return false;
}

bool JobContext::ScriptWithinBounds() {
  const auto written = static_cast<int64_t>(m_script->BytesWritten());
  return Spend(written - std::exchange(m_scriptCharged, written));
}

bool JobContext::Stopped() {
  if (m_job.StopRequested == nullptr || !m_job.StopRequested->load()) return false;
  if (!std::exchange(m_stopTold, true)) Error("The job was stopped; the sources are not complete", "Stopped");
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
  auto file = core::OutputFile::Create(std::move(path), reason);
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
    Error("Error writing " + script.Path() + ": " + script.Error(), "File Error");
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
      Error("Error writing " + outcome.Path + ": " + outcome.Error, "File Error");
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

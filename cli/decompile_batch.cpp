#include "cli/decompile_batch.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <mutex>
#include <thread>

#include "cli/terminal.h"
#include "core/paths.h"

namespace tarnwick::cli {

namespace {

/// Keeps what one job tells, and passes it on to a live listener if there is one.
class JobReport : public core::Report {
 public:
  JobReport(std::string& logText, core::Report* live) : m_logText(logText), m_live(live) {}

  void Log(std::string_view text) override {
    m_logText += text;
    if (m_live != nullptr) m_live->Log(text);
  }
  void Tell(const core::Trouble& trouble) override {
    if (!trouble.Caption.empty()) m_logText += trouble.Caption + ": " + OneLine(trouble.Text) + "\r\n";
    if (m_live != nullptr) m_live->Tell(trouble);
  }

 private:
  std::string& m_logText;
  core::Report* m_live;
};

/// Makes the folder with all that lead to it; says why it could not be made.
std::string MakeFolder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(core::NativePath(path), error);
  return error && !std::filesystem::is_directory(core::NativePath(path)) ? error.message() : std::string();
}

void RunOne(ModelOutcome& outcome, uint32_t options, core::WorkQueue& helpers, core::Report* live) {
  const auto started = std::chrono::steady_clock::now();
  JobReport report(outcome.LogText, live);
  try {
    if (const std::string problem = MakeFolder(outcome.Model.OutputDirectory); !problem.empty()) {
      const std::string text = "The output directory " + outcome.Model.OutputDirectory + " cannot be made: " + problem;
      report.ErrorBox(core::TroubleKind::Unwritable, text, "File Error");
      outcome.Result.Troubles.push_back({.Kind = core::TroubleKind::Unwritable, .Text = text, .Caption = "File Error"});
    } else {
      decompiler::DecompileJob job;
      job.ModelPath = outcome.Model.ModelPath;
      job.OutputDirectory = outcome.Model.OutputDirectory;
      job.Options = options;
      job.Helpers = &helpers;
      outcome.Result = decompiler::DecompileModel(job, report);
    }
  } catch (const std::exception& error) {  // memory ran out, at the latest
    outcome.Result = {};
    outcome.Result.Troubles.push_back({.Kind = core::TroubleKind::Limit, .Text = error.what(), .Caption = "Error"});
    report.ErrorBox(core::TroubleKind::Limit, error.what(), "Error");
  }
  outcome.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
}

}  // namespace

uint64_t ModelOutcome::Bytes() const {
  uint64_t bytes = 0;
  for (const decompiler::WrittenFile& file : Result.Files) bytes += file.Size;
  return bytes;
}

void RunDecompileBatch(const std::vector<PlannedModel>& models, uint32_t options, int jobs, core::Report* live,
                       const ModelDone& modelDone) {
  core::WorkQueue helpers;
  std::atomic<size_t> next{0};
  std::mutex lock;
  size_t done = 0;
  const auto work = [&] {
    for (size_t i = next++; i < models.size(); i = next++) {
      ModelOutcome outcome;
      outcome.Model = models[i];
      RunOne(outcome, options, helpers, live);
      const std::lock_guard guard(lock);
      modelDone(outcome, ++done, models.size());
      if (done == models.size()) helpers.Close();
    }
    helpers.RunUntilClosed();
  };
  if (models.empty()) return;
  std::vector<std::thread> threads;
  for (int i = 1; i < jobs; ++i) threads.emplace_back(work);
  work();
  for (std::thread& thread : threads) thread.join();
}

}  // namespace tarnwick::cli

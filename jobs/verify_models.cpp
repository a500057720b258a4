#include "jobs/verify_models.h"

#include <atomic>
#include <filesystem>
#include <optional>
#include <span>
#include <utility>

#include "core/memory_store.h"
#include "core/paths.h"
#include "core/whole_path.h"
#include "decompiler/decompile_job.h"
#include "jobs/input_files.h"
#include "jobs/own_compiler.h"
#include "jobs/scratch_directory.h"
#include "model/comparison/model_comparison.h"
#include "model/loaded_model.h"
#include "smd/source_comparison.h"

namespace tarnwick::jobs {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view ModelExtension = ".mdl";
constexpr const char* ScriptName = "ravelback.qc";

/// Passes errors on: what a step on the way logs and warns of shows in the comparison, if it matters.
class ErrorsOnly : public core::Report {
 public:
  ErrorsOnly(ItemRun& run, std::string step) : m_run(run), m_step(std::move(step)) {}

  void Log(std::string_view) override {}
  void Tell(const core::Trouble& trouble) override {
    // A stop is told once, for the whole round.
    if (trouble.Level != core::Severity::Error || trouble.Kind == core::TroubleKind::Stopped) return;
    core::Trouble told = trouble;
    told.Caption.clear();  // a box for every model that fails would be too many
    told.Text = m_step + ": " + told.Text;
    told.Alike = m_step + ": " + trouble.SharedText();
    m_run.Tell(told);
  }

 private:
  ItemRun& m_run;
  const std::string m_step;
};

class ModelRound {
 public:
  /// `threads` are those of the compile.
  ModelRound(const ModelCompiler& compiler, int32_t threads, const core::FileSource& files, ItemRun& run,
             core::FileStore& store, const fs::path& folder)
      : m_compiler(compiler),
        m_threads(threads),
        m_files(files),
        m_run(run),
        m_store(store),
        m_folder(folder),
        m_onStop(run.Stop, [this] { m_stopped = true; }) {}

  void Work() {
    const std::string sources = MakeFolder("sources");
    const std::string compiled = MakeFolder("compiled");
    const std::string again = MakeFolder("again");
    MakeFolder("compiled/models");
    if (Failed() || !Decompile(m_run.Result.Source, m_files, sources, "decompiling")) return;
    Step("compiling", 1);
    ErrorsOnly compileReport(m_run, "compiling");
    const auto model = m_compiler({.Files = m_store,
                                   .Script = sources + core::PathSeparator + ScriptName,
                                   .GameDirectory = compiled,
                                   .Version = Version(),
                                   .Threads = m_threads,
                                   .Stop = m_run.Stop},
                                  compileReport);
    if (Stopped()) return;
    if (!model && !Failed()) compileReport.ErrorBox(core::TroubleKind::Lost, "no model was made", "");
    if (Failed()) return;
    Step("decompiling again", 2);
    if (!Decompile(*model, m_store, again, "decompiling again")) return;
    Step("comparing", 3);
    Compare(*model, sources, again);
  }

 private:
  static constexpr size_t Steps = 4;

  std::string MakeFolder(const char* name) {
    std::string path = core::PathBelow(core::PathText(m_folder), name);
    if (const std::string problem = m_store.MakeFolder(path); !problem.empty()) {
      m_run.Fail(core::TroubleKind::Unwritable, "The folder " + path + " cannot be made: " + problem, path);
    }
    return path;
  }

  void Step(const char* name, size_t number) { m_run.Progressed(name, number, Steps); }
  bool Failed() const { return m_run.Result.First(core::Severity::Error) != nullptr; }
  bool Stopped() {
    if (m_stopped && !Failed()) m_run.Fail(core::TroubleKind::Stopped, "The verification was stopped");
    return m_stopped;
  }

  int32_t Version() const {
    model::StudioHeader header{};
    const bool isRead = m_files.ReadStart(m_run.Result.Source, std::as_writable_bytes(std::span(&header, 1)));
    return isRead ? header.Version : 0;
  }

  bool Decompile(const std::string& path, const core::FileSource& files, const std::string& folder,
                 const std::string& step) {
    ErrorsOnly report(m_run, step);
    decompiler::DecompileJob job;
    job.ModelPath = path;
    job.Files = &files;
    job.Output = &m_store;
    job.OutputDirectory = folder;
    job.Options = decompiler::DecompileOptionReadyToCompile;
    job.Helpers = &m_run.Helpers;
    job.StopRequested = &m_stopped;
    const auto result = decompiler::DecompileModel(job, report);
    if (Stopped()) return false;
    if (!result.Completed && !Failed()) report.ErrorBox(core::TroubleKind::Lost, "it did not come to its end", "");
    return !Failed();
  }

  void Compare(const std::string& model, const std::string& sources, const std::string& again) {
    ErrorsOnly report(m_run, "comparing");
    auto differences = model::CompareModels(
        m_run.Result.Source, model, report, [this] { return m_stopped.load(); }, m_files, m_store);
    if (Stopped() || !differences) return;
    Verification& verified = m_run.Result.Verified.emplace();
    verified.Model = std::move(*differences);
    verified.Sources = smd::CompareSources(sources, again, report, m_store);
    for (const std::string& line : verified.Lines()) m_run.Log(line + "\r\n");
    m_run.Result.Shown = verified.Line();
    if (verified.IsSameButForRounding()) return;
    m_run.Tell({.Kind = core::TroubleKind::Mismatch,
                .File = m_run.Result.Source,
                .Text = m_run.Result.Source + " " + verified.Line(),
                .Alike = "it is not the same after decompiling and compiling"});
  }

  const ModelCompiler& m_compiler;
  const int32_t m_threads;
  const core::FileSource& m_files;  // have the model that is verified
  ItemRun& m_run;
  core::FileStore& m_store;  // takes all that is made
  const fs::path m_folder;
  std::atomic<bool> m_stopped = false;
  const std::stop_callback<std::function<void()>> m_onStop;  // behind what it sets
};

}  // namespace

JobPlan Plan(const VerifyModels& job) {
  JobPlan plan;
  InputFiles found = FindInputFiles(job.Inputs, ModelExtension, job.Recursive, ContentOf(job)->Files());
  plan.Troubles = std::move(found.Troubles);
  UniqueNames folders;
  for (const InputFile& file : found.Files) {
    std::string target;
    if (!job.KeepDirectory.empty()) {
      const std::string folder = folders.Take(WithoutExtension(file.Name, ModelExtension));
      target = core::PathBelow(job.KeepDirectory, folder);
    }
    plan.Items.push_back({file.Path, std::move(target)});
  }
  return plan;
}

JobResult Run(const VerifyModels& job, Host& host, const std::stop_token& stop) {
  const ModelCompiler compiler = job.Compiler ? job.Compiler : CompileUnchanged;
  VerifyModels whole = job;
  whole.Content = ContentOf(job);
  const core::FileSource& files = whole.Content->Files();
  const int32_t threads = job.Threads > 1 ? 1 : 0;  // several models keep the cores busy by themselves
  core::MemoryBudget budget(job.MemoryLimit);
  return RunItems(Plan(whole), {job.Threads, job.Threads}, host, stop, [&](size_t, ItemRun& run) {
    const auto verify = [&](core::FileStore& store, const fs::path& folder) {
      ModelRound(compiler, threads, files, run, store, folder).Work();
    };
    if (!run.Result.Target.empty()) return verify(core::DiskStore(), core::NativePath(run.Result.Target));
    std::optional<ScratchDirectory> scratch;
    core::MemoryStore store(budget, [&](std::string& reason) {
      scratch.emplace();
      reason = "no folder for temporary files can be made: " + scratch->Problem();
      return core::PathText(scratch->Path());
    });
    verify(store, "");
  });
}

}  // namespace tarnwick::jobs

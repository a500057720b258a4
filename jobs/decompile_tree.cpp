#include "jobs/decompile_tree.h"

#include <atomic>
#include <filesystem>
#include <utility>

#include "core/paths.h"
#include "core/whole_path.h"
#include "jobs/input_files.h"
#include "jobs/staged_folder.h"
#ifdef TARNWICK_HAS_IMAGES
#include "jobs/model_materials.h"
#endif

namespace tarnwick::jobs {

namespace {

constexpr std::string_view ModelExtension = ".mdl";

/// Writes the materials of the item's model, which is decompiled.
void CopyMaterials([[maybe_unused]] const DecompileTree& job, [[maybe_unused]] const InputContent& content,
                   [[maybe_unused]] ItemRun& run) {
#ifdef TARNWICK_HAS_IMAGES
  images::ImageWorker worker;
  worker.StopWith(run.Stop);
  CopyModelMaterials({run.Result.Source, run.Result.Target, job.MaterialFormat}, content.Files(), worker, run);
  if (run.Stop.stop_requested()) run.Fail(core::TroubleKind::Stopped, "stopped");
#else
  run.Fail(core::TroubleKind::Unknown, "this build of the program cannot write materials");
#endif
}

void TellUnwritable(std::string text, std::string alike, ItemRun& run) {
  run.Tell({.Kind = core::TroubleKind::Unwritable,
            .File = run.Result.Target,
            .Text = std::move(text),
            .Caption = "File Error",
            .Alike = std::move(alike)});
}

void DecompileOne(const DecompileTree& job, const InputContent& content, ItemRun& run) {
  StagedFolder folder;
  // A model that is not there is told by the decompiler, and no folder is made for it.
  if (!run.Result.Target.empty() && content.Files().Holds(run.Result.Source)) {
    if (const std::string problem = folder.Make(run.Result.Target); !problem.empty()) {
      return TellUnwritable("The output directory " + run.Result.Target + " cannot be made: " + problem,
                            "an output directory cannot be made: " + problem, run);
    }
  }
  std::atomic<bool> stopRequested = false;
  const std::stop_callback onStop(run.Stop, [&] { stopRequested = true; });
  decompiler::DecompileJob work;
  work.ModelPath = run.Result.Source;
  work.OutputDirectory = run.Result.Target;
  work.Output = &folder;
  work.Files = &content.Files();
  work.Options = job.Options;
  work.Helpers = &run.Helpers;
  work.StopRequested = &stopRequested;
  work.Progress = [&run](const decompiler::DecompileProgress& now) {
    run.Progressed(now.File, static_cast<size_t>(now.FilesDone), static_cast<size_t>(now.FilesBegun));
  };
  decompiler::DecompileResult result = decompiler::DecompileModel(work, run);
  run.Result.Files = std::move(result.Files);
  run.Result.Lost = std::move(result.Lost);
  if (!run.Result.Files.empty()) {
    if (const std::string problem = folder.Commit(); !problem.empty()) {
      std::erase_if(run.Result.Files, [](const core::WrittenFile& file) { return !core::FileExists(file.Path); });
      return TellUnwritable("The files of " + run.Result.Target + " cannot be put there: " + problem,
                            "files cannot be put into an output directory: " + problem, run);
    }
  }
  if (!result.Completed && run.Result.First(core::Severity::Error) == nullptr) {
    run.Fail(core::TroubleKind::Lost, "it did not come to its end");
  }
  if (result.Completed && !job.MaterialFormat.empty()) CopyMaterials(job, content, run);
}

}  // namespace

JobPlan Plan(const DecompileTree& job) {
  JobPlan plan;
  InputFiles found = FindInputFiles(job.Inputs, ModelExtension, job.Recursive, ContentOf(job)->Files());
  plan.Troubles = std::move(found.Troubles);
  const bool single = job.Inputs.size() == 1 && found.Files.size() == 1 && !found.Files[0].Listed;
  if (single && !job.OwnFolders) {
    plan.Items.push_back({found.Files[0].Path, job.OutputDirectory});
    return plan;
  }
  UniqueNames folders;
  for (const InputFile& file : found.Files) {
    const std::string folder = folders.Take(WithoutExtension(file.Name, ModelExtension));
    plan.Items.push_back({file.Path, core::PathBelow(job.OutputDirectory, folder)});
  }
  return plan;
}

JobResult Run(const DecompileTree& job, Host& host, const std::stop_token& stop) {
  DecompileTree whole = job;
  whole.Content = ContentOf(job);
  return Run(whole, Plan(whole), host, stop);
}

JobResult Run(const DecompileTree& job, const JobPlan& plan, Host& host, const std::stop_token& stop) {
  const std::shared_ptr<InputContent> content = ContentOf(job);
  const ThreadUse threads{job.Threads, job.OneByOne ? 1 : job.Threads};
  return RunItems(plan, threads, host, stop, [&](size_t, ItemRun& run) {
    DecompileOne(job, *content, run);
    for (const core::Trouble& trouble : content->TakeTroubles()) run.Tell(trouble);
  });
}

}  // namespace tarnwick::jobs

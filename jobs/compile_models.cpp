#include "jobs/compile_models.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <string_view>

#include "core/paths.h"
#include "jobs/logged_warning.h"
#include "jobs/not_begun.h"
#include "jobs/project_script.h"
#include "jobs/written_anew.h"
#include "qc/script.h"
#include "tools/run_checks.h"
#include "tools/sdk_tools.h"
#include "tools/studiomdl_command.h"
#include "tools/tool_run.h"

namespace tarnwick::jobs {

namespace {

/// The files of a compiled model, the model itself first.
constexpr std::array<std::string_view, 7> ModelEndings = {".mdl",    ".vvd", ".dx90.vtx", ".dx80.vtx",
                                                          ".sw.vtx", ".phy", ".ani"};

/// The path of the model that the script makes, without its ending; "" if it names none.
std::string ModelStemOf(const std::string& gameDirectory, const std::string& script) {
  const auto model = qc::FindModelName(script);
  if (!model || model->empty()) return {};
  std::string_view game = gameDirectory;
  while (game.ends_with('/') || game.ends_with('\\')) game.remove_suffix(1);
  std::string stem = std::string(game) + "/models/" + *model;
  std::replace(stem.begin() + static_cast<std::ptrdiff_t>(game.size()), stem.end(), '\\', '/');
  if (core::EqualIgnoringCase(core::PathText(core::NativePath(stem).extension()), ModelEndings[0])) {
    stem.resize(stem.size() - ModelEndings[0].size());
  }
  return stem;
}

/// The files that a model's compile writes, watched over the run of the tool.
class ModelFiles {
 public:
  explicit ModelFiles(const std::string& stem) {
    if (stem.empty()) return;
    for (const std::string_view ending : ModelEndings) m_files.emplace_back(stem + std::string(ending));
  }

  bool AreKnown() const { return !m_files.empty(); }
  bool ModelExisted() const { return m_files.front().Existed(); }

  /// Those that were written since, with the model first.
  std::vector<core::WrittenFile> Written() const {
    std::vector<core::WrittenFile> written;
    for (const FileBefore& file : m_files) {
      std::error_code ignored;
      const auto path = file.NewFile();
      if (path) written.push_back({*path, std::filesystem::file_size(core::NativePath(*path), ignored)});
    }
    return written;
  }
  bool ModelIsWritten() const { return m_files.front().IsWrittenAnew(); }

 private:
  std::vector<FileBefore> m_files;
};

/// Judges the model of a run that came to its end.
void JudgeModel(const ModelFiles& files, ItemRun& run) {
  ItemResult& result = run.Result;
  result.Files = files.Written();
  if (!files.AreKnown()) {
    if (core::FileExists(result.Source)) {
      TellLoggedWarning(run, "the script names no model, so whether one was written is not known");
    } else {
      run.Fail(core::TroubleKind::Missing, "there is no script " + result.Source, result.Source);
    }
  } else if (!files.ModelIsWritten() && result.First(core::Severity::Error) == nullptr) {
    run.Tell({.Kind = core::TroubleKind::Tool,
              .File = result.Target,
              .Text = "studiomdl wrote no " + result.Target +
                      (files.ModelExisted() ? "; the file there is an older one" : ""),
              .Alike = "studiomdl wrote no model"});
  }
}

void CompileOne(const CompileModels& job, ItemRun& run) {
  ItemResult& result = run.Result;
  std::vector<std::string> warnings = job.Warnings;
  uint32_t switches = 0;
  if (IsProjectFile(result.Input)) {
    auto script = WriteProjectScript(result.Input, job.Materials, run);
    if (!script) {
      if (result.First(core::Severity::Error) == nullptr) {
        run.Fail(core::TroubleKind::Refused, "no script could be made of the project", result.Input);
      }
      return;
    }
    result.Source = script->Path;
    switches = script->Switches;
    warnings.insert(warnings.end(), script->Warnings.begin(), script->Warnings.end());
  }
  const tools::RunWarnings looks = tools::CheckStudiomdlRun(job.GameDirectory, result.Source);
  warnings.insert(warnings.end(), looks.begin(), looks.end());
  for (const std::string& warning : warnings) TellLoggedWarning(run, warning);

  const std::string stem = ModelStemOf(job.GameDirectory, result.Source);
  if (!stem.empty()) result.Target = stem + std::string(ModelEndings[0]);
  const ModelFiles files(stem);
  const process::Command command = CommandOf(job, result.Source, switches);
  tools::ToolRunOptions options;
  options.Start = job.Start;
  options.Stop = run.Stop;
  options.AnnounceStart = false;
  options.OnText = [&run](std::string_view text) { run.ToolText(text); };
  run.ToolLinesAreTroubles = true;
  run.Command(command.Line());
  const tools::FinishedRun finished = tools::RunTool(job.Shown, command, options, warnings);
  run.Flush();
  result.Shown = finished.TextWithNotes();
  result.Notes = finished.Notes;
  if (finished.Outcome.Failure) return tools::ReportFatalSystemError(*finished.Outcome.Failure, run);
  if (finished.Outcome.Stopped) return run.Fail(core::TroubleKind::Stopped, "stopped");
  const std::string crash = finished.Outcome.End ? process::CrashCause(*finished.Outcome.End) : "";
  if (!crash.empty()) run.Fail(core::TroubleKind::Tool, "studiomdl crashed: it was ended by " + crash);
  JudgeModel(files, run);
}

/// The folder whose studiomdl runs.
std::string SdkOf(const CompileModels& job) {
  return tools::ToolInUse(job.SdkDirectory, tools::Studiomdl).Directory;
}

}  // namespace

std::optional<core::Trouble> ObstacleOf(const CompileModels& job) {
  return tools::MissingTool(tools::SdkToolPath(SdkOf(job), tools::Studiomdl), tools::Studiomdl);
}

process::Command CommandOf(const CompileModels& job, const std::string& script, uint32_t switches) {
  return tools::StudiomdlCommand(SdkOf(job), job.GameDirectory, script, job.Switches | switches);
}

JobPlan Plan(const CompileModels& job) {
  JobPlan plan;
  for (const std::string& input : job.Inputs) plan.Items.push_back({input, ""});
  return plan;
}

JobResult Run(const CompileModels& job, Host& host, const std::stop_token& stop) {
  const JobPlan plan = Plan(job);
  if (const auto obstacle = ObstacleOf(job)) return NotBegun(plan, *obstacle, host);
  if (tools::ToolInUse(job.SdkDirectory, tools::Studiomdl).StandsIn) {
    host.On(Line{NoItem, LineSource::Log, tools::LineKind::Plain, tools::OwnToolNote(tools::Studiomdl) + "\r\n"});
  }
  return RunItems(plan, {}, host, stop, [&](size_t, ItemRun& run) { CompileOne(job, run); });
}

}  // namespace tarnwick::jobs

#include "cli/compile_run.h"

#include "core/paths.h"
#include "tools/line_splitter.h"
#include "tools/model_file_watch.h"
#include "tools/run_checks.h"
#include "tools/studiomdl_command.h"

namespace tarnwick::cli {

namespace {

void JudgeModel(CompileOutcome& outcome, const tools::ModelFileWatch& model, const CompileCalls& calls) {
  outcome.ModelPath = model.Path();
  outcome.ModelWritten = model.WasWritten();
  if (!outcome.ModelWritten && !core::FileExists(outcome.Input.QcPath)) {
    outcome.Errors.push_back("there is no script " + outcome.Input.QcPath);
  } else if (!outcome.ModelWritten) {
    outcome.Warnings.push_back("the script names no model, so whether one was written is not known");
    calls.OnWarning("Warning: " + outcome.Warnings.back());
  } else if (!*outcome.ModelWritten && outcome.Errors.empty()) {
    outcome.Errors.push_back("no newer model at " + outcome.ModelPath);
  }
}

}  // namespace

CompileOutcome RunCompile(const CompileInput& input, const std::string& sdkDirectory, const std::string& gameDirectory,
                          const tools::ToolRunOptions& options, const CompileCalls& calls) {
  CompileOutcome outcome;
  outcome.Input = input;
  const process::Command command = tools::StudiomdlCommand(sdkDirectory, gameDirectory, input.QcPath, input.Options);
  outcome.CommandLine = command.Line();
  for (const std::string& warning : tools::CheckStudiomdlRun(gameDirectory, input.QcPath)) calls.OnWarning(warning);
  const tools::ModelFileWatch model(gameDirectory, input.QcPath);
  tools::LineSplitter lines([&](const std::string& line) {
    const tools::LineKind kind = tools::ClassifyLine(line);
    if (kind == tools::LineKind::Error) outcome.Errors.push_back(line);
    if (kind == tools::LineKind::Warning) outcome.Warnings.push_back(line);
    calls.OnLine(line, kind);
  });
  tools::ToolRunOptions runOptions = options;
  runOptions.OnText = [&](std::string_view piece) { lines.Feed(piece); };
  calls.OnStart(outcome.CommandLine);
  outcome.Run = tools::RunTool(tools::ToolRun::StudiomdlForm, command, runOptions).Outcome;
  lines.Finish();
  if (outcome.Run.Failure) {
    outcome.Errors.push_back(outcome.Run.Failure->Text());
    return outcome;
  }
  if (outcome.Run.Stopped) return outcome;
  const std::string crash = outcome.Run.End ? process::CrashCause(*outcome.Run.End) : "";
  if (!crash.empty()) outcome.Errors.push_back("the tool crashed: it was ended by " + crash);
  JudgeModel(outcome, model, calls);
  return outcome;
}

}  // namespace tarnwick::cli

#include "tools/tool_run.h"

#include <utility>

namespace tarnwick::tools {

namespace {

/// A line of the notes; they start on a line of their own, whatever the tool's text ended with.
std::string Note(std::string_view text) {
  return "\r\n" + std::string(text);
}

std::string NotesOf(const ToolRunOutcome& outcome, size_t shown, const std::vector<std::string>& warnings) {
  std::string notes;
  if (outcome.OutputBytes > shown) {
    notes += Note("[" + std::to_string(outcome.OutputBytes - shown) +
                  " more bytes of output are not shown here; \"Whole log\" has them]");
  }
  if (outcome.Failure) notes += Note(outcome.Failure->Text());
  if (outcome.Stopped) notes += Note("[Stopped. The tool and everything that it started were ended]");
  const std::string crash = outcome.End && !outcome.Stopped ? process::CrashCause(*outcome.End) : "";
  if (!crash.empty()) notes += Note("[The tool crashed: it was ended by " + crash + "]");
  if (outcome.OutputAbandoned && !outcome.Stopped) {
    notes += Note("[The tool has ended; a program that it started still runs]");
  }
  for (const std::string& warning : warnings) notes += Note("Warning: " + warning);
  if (!notes.empty()) notes += "\r\n";
  return notes;
}

}  // namespace

FinishedRun RunTool(const ToolRunRule& rule, const ToolRunRequest& request, const ToolRunOptions& options,
                    const std::vector<std::string>& warnings) {
  ConsoleCapture capture;
  capture.Options = options;
  capture.RunAndCapture(request.CommandLine, request.OutputBuffer, request.OutputSize);
  size_t shown = 0;
  FinishedRun run;
  run.CommandLine = request.CommandLine.Line();
  run.Text = DisplayText(run.CommandLine, request.OutputBuffer, rule, &shown);
  run.Notes = NotesOf(capture.Outcome, shown, warnings);
  run.Outcome = std::move(capture.Outcome);
  return run;
}

FinishedRun RunTool(ToolRun run, const process::Command& command, const ToolRunOptions& options,
                    const std::vector<std::string>& warnings) {
  const ToolRunRule& rule = RuleOf(run);
  std::string buffer(static_cast<size_t>(rule.BufferBytes), '\0');
  return RunTool(rule, ToolRunRequest{command, buffer.data(), rule.BufferBytes}, options, warnings);
}

}  // namespace tarnwick::tools

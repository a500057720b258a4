#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/console_capture.h"
#include "tools/output_wrapping.h"

namespace tarnwick::tools {

/// A run that is over, with the texts to be shown of it.
struct FinishedRun {
  std::string CommandLine;  // as it is shown
  std::string Text;         // the command line, \r\n, and the tool's output as its rule shows it
  std::string Notes;        // what the program itself has to say behind that; empty after an ordinary run
  ToolRunOutcome Outcome;

  /// Text and Notes: what a window shows.
  std::string TextWithNotes() const { return Text + Notes; }
};

/// Runs a tool and returns when its output has ended. Called on a worker thread by a
/// window, whose own thread goes on; `options` says how to follow the run and how to stop it. `warnings` are what the
/// checks before the run found; they come back at the end of the notes. A tool that cannot be started is told in
/// `Outcome.Failure`, which the caller shows with `ReportFatalSystemError`, and in the notes.
FinishedRun RunTool(ToolRun run, const process::Command& command, const ToolRunOptions& options,
                    const std::vector<std::string>& warnings = {});

/// The same with a request whose buffer is the caller's.
FinishedRun RunTool(const ToolRunRule& rule, const ToolRunRequest& request, const ToolRunOptions& options,
                    const std::vector<std::string>& warnings = {});

}  // namespace tarnwick::tools

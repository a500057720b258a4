#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/output_lines.h"
#include "tools/tool_run.h"

namespace tarnwick::cli {

/// One script to be compiled.
struct CompileInput {
  std::string Name;    // as the user named it
  std::string QcPath;  // the script
  uint32_t Options = 0;
};

/// What became of it.
struct CompileOutcome {
  CompileInput Input;
  std::string CommandLine;
  std::string ModelPath;             // empty if the script names no model
  std::optional<bool> ModelWritten;  // unknown without a name
  std::vector<std::string> Errors;   // lines of the tool that tell errors, and the program's own
  std::vector<std::string> Warnings;
  tools::ToolRunOutcome Run;

  bool Succeeded() const { return Errors.empty() && !Run.Stopped; }
};

/// Runs studiomdl on a script and judges the run by what it printed and by the model that it left. `onStart` gets the
/// command line, `onWarning` what looks wrong before the run, `onLine` each line of the tool as it comes.
struct CompileCalls {
  std::function<void(const std::string& commandLine)> OnStart;
  std::function<void(const std::string& warning)> OnWarning;
  std::function<void(const std::string& line, tools::LineKind kind)> OnLine;
};
CompileOutcome RunCompile(const CompileInput& input, const std::string& sdkDirectory, const std::string& gameDirectory,
                          const tools::ToolRunOptions& options, const CompileCalls& calls);

}  // namespace tarnwick::cli

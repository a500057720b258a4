#include "cli/vtf_info.h"

#include "cli/terminal.h"
#include "core/program_directory.h"
#include "tools/sdk_tools.h"
#include "tools/tool_run.h"

namespace tarnwick::cli {

int PrintVtfInfo(const std::vector<std::string>& files, bool json, Invocation& invocation) {
  // Only the program's own tool can tell the facts of a texture, so the SDK's is not asked.
  const auto folder = tools::OwnToolDirectory(tools::Vtf2tga);
  if (!folder) {
    invocation.Err << "Error: the program's own vtf2tga.exe is not in " << core::ProgramDirectory() << "/sdk\n";
    return ExitFailure;
  }
  int exitCode = ExitSuccess;
  tools::ToolRunOptions options;
  options.AnnounceStart = false;
  for (const std::string& file : files) {
    process::Command command{tools::SdkToolPath(*folder, tools::Vtf2tga)};
    command.Word("-nopause").Word(json ? "-json" : "-info").Word("-i").InQuotes(file);
    const auto run = tools::RunTool(tools::ToolRun::Vtf2tga, command, options);
    const std::string said = run.Outcome.Log.Text();
    const bool good = !run.Outcome.Failure && run.Outcome.End && run.Outcome.End->ExitCode == 0;
    if (!good) {
      exitCode = ExitFailure;
      invocation.Err << (run.Outcome.Failure ? file + ": " + run.Outcome.Failure->Text() : OneLine(said)) << '\n';
      continue;
    }
    invocation.Out << (&file == &files.front() || json ? "" : "\n") << PlainLines(said);
  }
  return exitCode;
}

}  // namespace tarnwick::cli

#include "cli/vtf_info.h"

#include "cli/terminal.h"
#include "core/program_directory.h"
#include "jobs/texture_images.h"
#include "tools/sdk_tools.h"
#include "tools/tool_run.h"

namespace tarnwick::cli {

int PrintVtfInfo(const std::vector<std::string>& files, bool json, jobs::InputContent& content,
                 Invocation& invocation) {
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
    const bool first = &file == &files.front() || json;
    if (!jobs::IsOnDisk(file)) {
      std::string reason;
      const auto facts = jobs::TextureFacts(file, content.Files(), json, reason);
      for (const core::Trouble& trouble : content.TakeTroubles()) invocation.Err << "Warning: " << trouble.Text << '\n';
      if (facts) {
        invocation.Out << (first ? "" : "\n") << *facts;
      } else {
        exitCode = ExitFailure;
        invocation.Err << "Error: " << file << ": " << reason << '\n';
      }
      continue;
    }
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
    invocation.Out << (first ? "" : "\n") << PlainLines(said);
  }
  return exitCode;
}

}  // namespace tarnwick::cli

#include "cli/qc_verb.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "cli/console_report.h"
#include "cli/project_script.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Example:
  tarnwick-cli qc --materials props crate.sc)";

struct Options {
  std::vector<std::string> Projects;
  ProjectScripts Scripts;
};

int WriteScripts(Options options, Invocation& invocation) {
  ConsoleReport report(invocation.Err);
  options.Scripts.FillFromSettings(invocation.Err);
  int exitCode = ExitSuccess;
  for (const std::string& path : options.Projects) {
    if (const auto script = options.Scripts.Write(path, report)) {
      invocation.Out << script->Path << '\n';
    } else {
      invocation.Err << path << ": no script was written\n";
      exitCode = ExitFailure;
    }
  }
  return exitCode;
}

}  // namespace

void AddQcVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("qc", "Write the QC script of a model project beside its reference SMD");
  auto options = std::make_shared<Options>();
  verb->add_option("PROJECT", options->Projects, "Project files (.sc)")->required();
  options->Scripts.AddOptions(*verb);
  verb->footer(Examples);
  verb->callback([options, &invocation] {
    invocation.Run = [options, &invocation] { return WriteScripts(*options, invocation); };
  });
}

}  // namespace tarnwick::cli

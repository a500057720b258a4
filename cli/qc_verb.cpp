#include "cli/qc_verb.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "cli/console_report.h"
#include "project/project_file.h"
#include "project/qc_generator.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Example:
  tarnwick-cli qc --materials props crate.sc)";

struct Options {
  std::vector<std::string> Projects;
  std::string Materials;
};

int WriteScripts(const Options& options, Invocation& invocation) {
  ConsoleReport report(invocation.Err);
  int exitCode = ExitSuccess;
  for (const std::string& path : options.Projects) {
    project::ModelOptions modelOptions;
    project::ModelProject model(modelOptions);
    project::ProfileStore store;
    std::string script;
    model.materialDirectory = options.Materials;
    if (!project::OpenProjectFile(path, model, store, report)) {
      exitCode = ExitFailure;
    } else if (!project::WriteQcScript(model, report, script)) {
      invocation.Err << path << ": no script was written\n";
      exitCode = ExitFailure;
    } else {
      invocation.Out << script << '\n';
    }
  }
  return exitCode;
}

}  // namespace

void AddQcVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("qc", "Write the QC script of a model project beside its reference SMD");
  auto options = std::make_shared<Options>();
  verb->add_option("PROJECT", options->Projects, "Project files (.sc)")->required();
  verb->add_option("-m,--materials", options->Materials, "Material directory, relative to materials/models");
  verb->footer(Examples);
  verb->callback([options, &invocation] {
    invocation.Run = [options, &invocation] { return WriteScripts(*options, invocation); };
  });
}

}  // namespace tarnwick::cli

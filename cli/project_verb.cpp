#include "cli/project_verb.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/console_report.h"
#include "core/paths.h"
#include "project/project_edit.h"
#include "project/project_file.h"
#include "project/project_values.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli project show crate.sc
  tarnwick-cli project set --new crate.sc "Model File" props/crate.mdl "Reference SMD" crate.smd
  tarnwick-cli project set crate.sc Animation0/Name spin Animation0/FPS 24
  tarnwick-cli project get crate.sc "Model Options/Scale"
  tarnwick-cli project remove crate.sc Animation0)";

struct Options {
  std::string Path;
  std::vector<std::string> Words;  // keys, keys with values, or entries
  bool Json = false;
  bool New = false;
};

/// A project file with what it needs around it.
struct OpenProject {
  explicit OpenProject(std::ostream& err) : Report(err) {}

  bool Open(const std::string& path) { return project::OpenProjectFile(path, Model, Store, Report); }
  int Save(const std::string& path) {
    return project::SaveProjectFile(path, Model, Store, Report) ? ExitSuccess : ExitFailure;
  }

  ConsoleReport Report;
  project::ModelOptions ModelOptions;
  project::ModelProject Model{ModelOptions};
  project::ProfileStore Store;
};

int Fail(Invocation& invocation, const std::string& path, const std::string& reason) {
  invocation.Err << "Error: " << path << ": " << reason << '\n';
  return ExitFailure;
}

int Show(const Options& options, Invocation& invocation) {
  OpenProject open(invocation.Err);
  if (!open.Open(options.Path)) return ExitFailure;
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  project::ForEachProjectValue(open.Model, [&](const project::ProjectValue& value) {
    if (options.Json) {
      json[value.Key] = value.Text;
    } else {
      invocation.Out << value.Key << ": " << value.Text << '\n';
    }
  });
  if (options.Json) {
    invocation.Out << json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
  }
  return ExitSuccess;
}

int Get(const Options& options, Invocation& invocation) {
  OpenProject open(invocation.Err);
  if (!open.Open(options.Path)) return ExitFailure;
  int exitCode = ExitSuccess;
  for (const std::string& key : options.Words) {
    if (const auto value = project::GetProjectValue(open.Model, key)) {
      invocation.Out << *value << '\n';
    } else {
      exitCode = Fail(invocation, options.Path, "the project has no " + key);
    }
  }
  return exitCode;
}

int Set(const Options& options, Invocation& invocation) {
  if (options.Words.size() % 2 != 0) {
    invocation.Err << "Error: " << options.Words.back() << " has no value behind it\n";
    return ExitUsage;
  }
  OpenProject open(invocation.Err);
  const bool create = options.New && !core::FileExists(options.Path);
  if (!create && !open.Open(options.Path)) return ExitFailure;
  for (size_t i = 0; i < options.Words.size(); i += 2) {
    if (const auto problem = project::SetProjectValue(open.Model, options.Words[i], options.Words[i + 1])) {
      return Fail(invocation, options.Path, *problem + ". Nothing was changed");
    }
  }
  return open.Save(options.Path);
}

int Remove(const Options& options, Invocation& invocation) {
  OpenProject open(invocation.Err);
  if (!open.Open(options.Path)) return ExitFailure;
  for (const std::string& entry : options.Words) {
    if (const auto problem = project::RemoveProjectEntry(open.Model, entry)) {
      return Fail(invocation, options.Path, *problem + ". Nothing was changed");
    }
  }
  return open.Save(options.Path);
}

}  // namespace

void AddProjectVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("project", "Show and change model projects (.sc)");
  verb->require_subcommand(1);
  verb->footer(Examples);
  auto options = std::make_shared<Options>();
  const auto add = [&](const char* name, const char* help, int (*work)(const Options&, Invocation&)) {
    CLI::App* part = verb->add_subcommand(name, help);
    part->add_option("PROJECT", options->Path, "Project file (.sc)")->required();
    part->callback([options, &invocation, work] {
      invocation.Run = [options, &invocation, work] { return work(*options, invocation); };
    });
    return part;
  };
  add("show", "All values, under the keys of the file", Show)->add_flag("--json", options->Json, "As a JSON object");
  add("get", "Single values, one a line", Get)
      ->add_option("KEY", options->Words, "Keys such as \"Model File\" or Animation0/Name")
      ->required();
  CLI::App* set = add("set", "Set values; the number behind a list's last entry makes a new one", Set);
  set->add_option("KEY VALUE", options->Words, "Keys, each with its value behind it")->required();
  set->add_flag("--new", options->New, "Make the file if there is none");
  add("remove", "Remove entries of lists; the ones behind move up", Remove)
      ->add_option("ENTRY", options->Words, "Entries such as Animation0, Gib1 or Animation0/Command2")
      ->required();
}

}  // namespace tarnwick::cli

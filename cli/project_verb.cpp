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
  tarnwick-cli project set crate.sc "Model Options/Prop Type" prop_physics "Phy SMD Check" 1
  tarnwick-cli project set crate.sc Animation0/Name spin "Animation0/SMD Name" spin.smd Animation0/FPS 24
  tarnwick-cli project get crate.sc "Model Options/Scale"
  tarnwick-cli project remove crate.sc Animation0
  tarnwick-cli project keys)";

struct Options {
  std::string Path;
  std::vector<std::string> Words;  // keys, keys with values, or entries
  bool Json = false;
  bool New = false;
  bool Force = false;
};

/// A project file with what it needs around it.
struct OpenProject {
  explicit OpenProject(std::ostream& err) : Report(err) {}

  bool Open(const std::string& path) { return project::OpenProjectFile(path, Model, Store, Report, &Whole); }
  int Save(const std::string& path) {
    return project::SaveProjectFile(path, Model, Store, Report) ? ExitSuccess : ExitFailure;
  }

  ConsoleReport Report;
  project::ModelOptions ModelOptions;
  project::ModelProject Model{ModelOptions};
  project::ProfileStore Store;
  bool Whole = true;  // whether all of the file was loaded
};

int Fail(Invocation& invocation, const std::string& path, const std::string& reason) {
  invocation.Err << "Error: " << path << ": " << reason << '\n';
  return ExitFailure;
}

/// Opens a project to change it. One of which a part could not be loaded, which saving would lose, is not opened
/// without --force.
bool OpenToChange(OpenProject& open, const Options& options, Invocation& invocation) {
  if (!open.Open(options.Path)) return false;
  if (open.Whole || options.Force) return true;
  Fail(invocation, options.Path,
       "saving it would lose what was not loaded. Nothing was changed; --force saves all the same");
  return false;
}

void Print(const nlohmann::ordered_json& json, Invocation& invocation) {
  invocation.Out << json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
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
  if (options.Json) Print(json, invocation);
  return ExitSuccess;
}

int Get(const Options& options, Invocation& invocation) {
  OpenProject open(invocation.Err);
  if (!open.Open(options.Path)) return ExitFailure;
  int exitCode = ExitSuccess;
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  for (const std::string& key : options.Words) {
    const auto value = project::GetProjectValue(open.Model, key);
    if (!value) {
      exitCode = Fail(invocation, options.Path, "the project has no " + key);
    } else if (options.Json) {
      json[key] = *value;
    } else {
      invocation.Out << *value << '\n';
    }
  }
  if (options.Json) Print(json, invocation);
  return exitCode;
}

int Set(const Options& options, Invocation& invocation) {
  if (options.Words.size() % 2 != 0) {
    invocation.Err << "Error: " << options.Words.back() << " has no value behind it\n";
    return ExitUsage;
  }
  OpenProject open(invocation.Err);
  const bool create = options.New && !core::FileExists(options.Path);
  if (!options.New && !core::FileExists(options.Path)) {
    return Fail(invocation, options.Path, "there is no such file; --new makes one");
  }
  if (!create && !OpenToChange(open, options, invocation)) return ExitFailure;
  std::vector<project::ProjectChange> changes;
  for (size_t i = 0; i < options.Words.size(); i += 2) changes.push_back({options.Words[i], options.Words[i + 1]});
  if (const auto problem = project::SetProjectValues(open.Model, changes)) {
    return Fail(invocation, options.Path, *problem + ". Nothing was changed");
  }
  return open.Save(options.Path);
}

int Remove(const Options& options, Invocation& invocation) {
  OpenProject open(invocation.Err);
  if (!OpenToChange(open, options, invocation)) return ExitFailure;
  for (const std::string& entry : options.Words) {
    if (const auto problem = project::RemoveProjectEntry(open.Model, entry)) {
      return Fail(invocation, options.Path, *problem + ". Nothing was changed");
    }
  }
  return open.Save(options.Path);
}

/// What a value of a key is: "number, 30.0 unless given".
std::string KindText(const project::KeyDescription& key) {
  constexpr const char* KindNames[] = {"text", "whole number", "number", "0 | 1"};  // in the order of ValueKind
  std::string text;
  for (const std::string_view name : key.Names) text.append(text.empty() ? "" : " | ").append(name);
  if (text.empty()) text = KindNames[static_cast<size_t>(key.Kind)];
  return key.Default.empty() ? text : text + ", " + std::string(key.Default) + " unless given";
}

int ShowKeys(Invocation& invocation) {
  for (const project::KeyDescription& key : project::DescribeProjectKeys()) {
    invocation.Out << key.Key << ": " << key.Label << " (" << KindText(key) << ")\n";
  }
  return ExitSuccess;
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
  CLI::App* get = add("get", "Single values, one a line", Get);
  get->add_option("KEY", options->Words, "Keys such as \"Model File\" or Animation0/Name")->required();
  get->add_flag("--json", options->Json, "As a JSON object");
  CLI::App* set = add("set", "Set values; the number behind a list's last entry makes a new one", Set);
  set->add_option("KEY VALUE", options->Words, "Keys, each with its value behind it")->required();
  set->add_flag("--new", options->New, "Make the file if there is none");
  CLI::App* remove = add("remove", "Remove entries of lists; the ones behind move up", Remove);
  remove->add_option("ENTRY", options->Words, "Entries such as Animation0, Gib1 or Animation0/Command2")->required();
  for (CLI::App* change : {set, remove}) {
    change->add_flag("--force", options->Force, "Save also what could not all be loaded");
  }
  verb->add_subcommand("keys", "All keys that a project can have, with what they are")->callback([&invocation] {
    invocation.Run = [&invocation] { return ShowKeys(invocation); };
  });
}

}  // namespace tarnwick::cli

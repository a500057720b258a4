#include "cli/qc_verb.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/console_report.h"
#include "cli/project_script.h"
#include "jobs/project_script.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli qc --materials props crate.sc
  tarnwick-cli qc --json crate.sc barrel.sc)";

struct Options {
  std::vector<std::string> Projects;
  ProjectScripts Scripts;
  bool Json = false;
};

/// Passes everything on and keeps the errors.
class ErrorKeeper : public core::Report {
 public:
  explicit ErrorKeeper(std::ostream& err) : m_report(err) {}
  void Log(std::string_view text) override { m_report.Log(text); }
  void Tell(const core::Trouble& trouble) override {
    m_report.Tell(trouble);
    if (trouble.Level == core::Severity::Error) Errors.push_back(LineOf(trouble));
  }

  std::vector<std::string> Errors;

 private:
  ConsoleReport m_report;
};

std::string Json(const std::string& project, const std::optional<jobs::ProjectScript>& script,
                 const std::vector<std::string>& errors) {
  nlohmann::ordered_json json{{"project", project}, {"outcome", script ? "ok" : "failed"}};
  if (script) json["script"] = script->Path;
  json["errors"] = errors;
  json["warnings"] = script ? script->Warnings : std::vector<std::string>();
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

int WriteScripts(Options options, Invocation& invocation) {
  options.Scripts.FillFromSettings(invocation.Err);
  int exitCode = ExitSuccess;
  for (const std::string& path : options.Projects) {
    ErrorKeeper report(invocation.Err);
    const auto script = jobs::WriteProjectScript(path, options.Scripts.Materials.value_or(""), report);
    if (script) {
      for (const std::string& warning : script->Warnings) invocation.Err << "Warning: " << warning << '\n';
    } else {
      invocation.Err << path << ": no script was written\n";
      exitCode = ExitFailure;
    }
    if (options.Json) {
      invocation.Out << Json(path, script, report.Errors) << '\n';
    } else if (script) {
      invocation.Out << script->Path << '\n';
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
  verb->add_flag("--json", options->Json, "Print one JSON object a project, one a line");
  verb->footer(Examples);
  verb->callback([options, &invocation] {
    invocation.Run = [options, &invocation] { return WriteScripts(*options, invocation); };
  });
}

}  // namespace tarnwick::cli

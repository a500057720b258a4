#include "cli/compile_verb.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/compile_run.h"
#include "cli/console_report.h"
#include "cli/interrupt.h"
#include "cli/project_script.h"
#include "cli/tool_directories.h"
#include "core/paths.h"
#include "tools/studiomdl_command.h"
#include "tools/tool_file.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli compile --game ~/games/mod crate.qc
  tarnwick-cli compile --materials props crate.sc barrel.sc
  tarnwick-cli compile --sdk "/opt/sdk bin" --wine wine64 --fullcollide crate.qc)";

struct Options {
  std::vector<std::string> Inputs;
  ToolDirectories Directories;
  ProjectScripts Scripts;
  uint32_t Switches = 0;
  bool Json = false;
  bool Quiet = false;
};

/// "Dump Hit Boxes" as an option: "--dump-hit-boxes".
std::string OptionName(std::string_view caption) {
  std::string name = "--" + core::LowerAscii(caption);
  for (char& c : name) {
    if (c == ' ') c = '-';
  }
  return name;
}

bool IsProject(const std::string& path) {
  return core::EqualIgnoringCase(core::NativePath(path).extension().string(), ".sc");
}

std::string OutcomeJson(const CompileOutcome& outcome) {
  nlohmann::ordered_json json;
  json["input"] = outcome.Input.Name;
  json["outcome"] = outcome.Succeeded() ? "ok" : outcome.Run.Stopped ? "stopped" : "failed";
  json["command"] = outcome.CommandLine;
  json["script"] = outcome.Input.QcPath;
  json["model"] = outcome.ModelPath;
  json["written"] = outcome.ModelWritten.value_or(false);
  json["errors"] = outcome.Errors;
  json["warnings"] = outcome.Warnings;
  // A tool's words are bytes in no known encoding; JSON takes UTF-8 only.
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

/// The verb's run over all its inputs.
class Compile {
 public:
  Compile(const Options& options, Invocation& invocation)
      : m_options(options), m_out(invocation.Out), m_err(invocation.Err), m_report(invocation.Err) {}

  int Run() {
    m_options.Directories.FillFromSettings(m_err);
    m_options.Scripts.FillFromSettings(m_err);
    const std::string tool = tools::SdkToolPath(m_options.Directories.Sdk, tools::Studiomdl);
    bool isThere = true;
    for (const std::string& path : m_options.Inputs) {
      const auto input = isThere ? PrepareInput(path) : std::nullopt;
      if (isThere && !tools::RequireTool(tool, tools::Studiomdl, m_report)) {
        isThere = false;
        m_err << SdkAdvice << '\n';
      }
      if (input && isThere) {
        RunOne(*input);
      } else {
        CompileOutcome failed;
        failed.Input.Name = path;
        failed.Errors.push_back(isThere ? "no script could be made of the project" : tool + " was not found");
        m_outcomes.push_back(failed);
      }
      Tell(m_outcomes.back());
      if (m_interrupt.IsSet()) break;
    }
    return Summarize();
  }

 private:
  /// The script of `path`: the file itself, or the one that its project writes. Nothing if that failed, which is told.
  std::optional<CompileInput> PrepareInput(const std::string& path) {
    if (!IsProject(path)) return CompileInput{path, path, m_options.Switches};
    const auto script = m_options.Scripts.Write(path, m_report);
    if (!script) return std::nullopt;
    for (const std::string& warning : script->Warnings) m_err << warning << '\n';
    return CompileInput{path, script->Path, script->Options | m_options.Switches};
  }

  void RunOne(const CompileInput& input) {
    tools::ToolRunOptions run;
    run.Start = m_options.Directories.Start();
    run.Stop = m_interrupt.Token();
    run.AnnounceStart = false;
    std::ostream& lines = m_options.Json ? m_err : m_out;
    CompileCalls calls;
    calls.OnWarning = [&](const std::string& warning) { m_err << warning << std::endl; };
    calls.OnStart = [&](const std::string& commandLine) {
      if (!m_options.Quiet) lines << commandLine << std::endl;
    };
    calls.OnLine = [&](const std::string& line, tools::LineKind kind) {
      if (!m_options.Quiet) {
        lines << line << std::endl;
      } else if (kind != tools::LineKind::Plain) {
        m_err << line << std::endl;
      }
    };
    m_outcomes.push_back(RunCompile(input, m_options.Directories.Sdk, m_options.Directories.Game, run, calls));
  }

  /// What the tool's own lines do not say.
  void Tell(const CompileOutcome& outcome) {
    const std::string& name = outcome.Input.Name;
    if (outcome.Run.Stopped) m_err << name << ": stopped\n";
    if (outcome.Run.Failure) m_err << "Error: " << outcome.Run.Failure->Text() << '\n';
    if (!outcome.Run.Failure && !outcome.Errors.empty()) m_err << name << ": Error: " << outcome.Errors.back() << '\n';
    if (m_options.Json) m_out << OutcomeJson(outcome) << '\n';
  }

  int Summarize() {
    size_t failed = m_options.Inputs.size() - m_outcomes.size();  // those that a stop kept from their turn
    for (const CompileOutcome& outcome : m_outcomes) failed += outcome.Succeeded() ? 0u : 1u;
    if (m_options.Inputs.size() > 1 && !m_options.Quiet) {
      for (const CompileOutcome& outcome : m_outcomes) {
        m_err << (outcome.Succeeded() ? "ok      " : "failed  ") << outcome.Input.Name;
        if (outcome.Succeeded() && !outcome.ModelPath.empty()) m_err << " -> " << outcome.ModelPath;
        m_err << '\n';
      }
      m_err << m_options.Inputs.size() - failed << " of " << m_options.Inputs.size() << " compiled\n";
    }
    return failed == 0 ? ExitSuccess : ExitFailure;
  }

  Options m_options;
  std::ostream& m_out;
  std::ostream& m_err;
  ConsoleReport m_report;
  InterruptFlag m_interrupt;
  std::vector<CompileOutcome> m_outcomes;
};

}  // namespace

void AddCompileVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("compile", "Compile model projects and QC scripts with the SDK's studiomdl");
  auto options = std::make_shared<Options>();
  verb->add_option("PROJECT.sc|FILE.qc", options->Inputs, "Model projects, or scripts; one is run after the other")
      ->required();
  options->Directories.AddOptions(*verb);
  options->Scripts.AddOptions(*verb);
  for (const tools::StudiomdlOption& option : tools::StudiomdlOptions) {
    if (option.Switch.empty()) continue;
    verb->add_flag_callback(
        OptionName(option.Caption), [options, bit = option.Bit] { options->Switches |= bit; },
        "Run studiomdl with" + std::string(option.Switch) + ", besides what a project asks for");
  }
  verb->add_flag("--json", options->Json,
                 "Print one JSON object a file, one a line, on standard output; the tool's lines go to standard error");
  verb->add_flag("-q,--quiet", options->Quiet, "Print errors and warnings only");
  verb->footer(Examples);
  verb->callback([options, &invocation] {
    invocation.Run = [options, &invocation] { return Compile(*options, invocation).Run(); };
  });
}

}  // namespace tarnwick::cli

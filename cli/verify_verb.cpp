#include "cli/verify_verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "cli/console_host.h"
#include "cli/interrupt.h"
#include "cli/tool_directories.h"
#include "jobs/verify_models.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli verify hair.mdl
  tarnwick-cli verify -r game/models
  tarnwick-cli verify --keep rounds --json hair.mdl >result.jsonl

The exit code is 0 if every model is the same, also but for rounding and for what no source holds.)";

struct Options {
  std::vector<std::string> Inputs;
  std::string Keep;
  ToolDirectories Directories;
  bool Recursive = false;
  bool Details = false;
  bool Json = false;
  bool Quiet = false;
  int Jobs = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
};

const char* VerdictWord(const jobs::ItemResult& result) {
  if (!result.Verified) return OutcomeWord(result.Judged);
  if (result.Verified->IsSame()) return "same";
  if (!result.Verified->IsSameButForRounding()) return "differs";
  return result.Verified->HasDerived() ? "derived" : "rounding";
}

/// One line of JSON for a model; docs/command-line.md describes it.
std::string ModelJson(const jobs::ItemResult& result) {
  nlohmann::ordered_json model;
  model["model"] = result.Input;
  model["outcome"] = VerdictWord(result);
  model["differences"] = nlohmann::ordered_json::array();
  model["sources"] = nlohmann::ordered_json::array();
  if (result.Verified) {
    for (const auto& one : result.Verified->Model) {
      model["differences"].push_back({{"table", TableName(one.Table)},
                                      {"what", one.What},
                                      {"where", one.Where},
                                      {"first", one.First},
                                      {"second", one.Second},
                                      {"count", one.Count},
                                      {"largest", one.Largest},
                                      {"rounding", one.IsRounding},
                                      {"derived", std::string(one.Derived)}});
    }
    for (const auto& one : result.Verified->Sources) {
      model["sources"].push_back({{"file", one.File},
                                  {"inFirst", one.InFirst},
                                  {"inSecond", one.InSecond},
                                  {"lines", one.Lines},
                                  {"realLines", one.RealLines},
                                  {"largest", one.Largest},
                                  {"line", one.Line},
                                  {"first", one.First},
                                  {"second", one.Second},
                                  {"rounding", one.IsRounding()}});
    }
  }
  model["kept"] = result.Target;
  model["seconds"] = result.Seconds;
  model["errors"] = TroubleLines(result, core::Severity::Error);
  // Names inside models are bytes in no known encoding; JSON takes UTF-8 only.
  return model.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

/// "crate.mdl: same", or why not.
std::string ModelLine(const jobs::ItemResult& result) {
  if (result.Verified) return result.Input + ": " + result.Shown;
  const core::Trouble* error = result.First(core::Severity::Error);
  const std::string reason = error == nullptr ? std::string() : ": " + LineOf(*error);
  return result.Input + ": " + OutcomeWord(result.Judged) + reason;
}

int Verify(Options& options, Invocation& invocation) {
  const jobs::VerifyModels job{.Inputs = options.Inputs,
                               .Content = options.Directories.ContentFor(options.Inputs, false, invocation.Err),
                               .Recursive = options.Recursive,
                               .KeepDirectory = options.Keep,
                               .Threads = options.Jobs};
  const auto resultLine = [&](const jobs::ItemResult& result) {
    if (options.Json) return ModelJson(result);
    // What went well is no news to somebody who wants none.
    return options.Quiet && result.Succeeded() ? std::string() : ModelLine(result);
  };
  const InterruptFlag interrupt;
  ConsoleHost host(invocation.Out, invocation.Err,
                   {.Item = "model",
                    .Quiet = options.Quiet,
                    .ShowsLog = options.Details,
                    .ResultsSayAll = true,
                    .ResultLine = resultLine});
  return ExitCodeOf(jobs::Run(job, host, interrupt.Token()));
}

}  // namespace

void AddVerifyVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand(
      "verify", "Decompile models, compile them and decompile them again, and tell what has changed on the way");
  auto options = std::make_shared<Options>();
  verb->add_option("MODEL|DIRECTORY", options->Inputs,
                   "Compiled models (.mdl, with .vvd and .vtx beside them), or folders; on the disk, in an archive "
                   "(pak01_dir.vpk:models/crate.mdl), or in the game (game:models/crate.mdl)")
      ->required();
  verb->add_flag("-r,--recursive", options->Recursive, "Take every .mdl file below a DIRECTORY");
  options->Directories.AddGameOption(*verb);
  verb->add_option("-j,--jobs", options->Jobs, "Models at a time")
      ->type_name("N")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  verb->add_flag("--details", options->Details, "Tell every difference, a line each, on standard error");
  verb->add_flag("--json", options->Json, "Print one JSON object a model, one a line, with every difference");
  verb->add_option("--keep", options->Keep,
                   "Keep both sources and the model that was compiled of the first, in a folder for each model below "
                   "this one")
      ->type_name("DIR");
  verb->add_flag("-q,--quiet", options->Quiet, "Print models that differ or fail only");
  verb->footer(Examples);
  verb->callback(
      [options, &invocation] { invocation.Run = [options, &invocation] { return Verify(*options, invocation); }; });
}

}  // namespace tarnwick::cli

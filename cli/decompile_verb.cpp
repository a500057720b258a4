#include "cli/decompile_verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include "cli/console_report.h"
#include "cli/decompile_batch.h"
#include "cli/decompile_plan.h"
#include "cli/decompile_summary.h"
#include "cli/terminal.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli decompile -o sources hair.mdl
  tarnwick-cli decompile -o sources -r game/models
  tarnwick-cli decompile --json -o sources a.mdl b.mdl >result.jsonl)";

struct Options {
  std::vector<std::string> Inputs;
  std::string Output = ".";
  bool Unweighted = false;
  bool KeepRotations = false;
  bool Plain = false;
  bool Recursive = false;
  bool Json = false;
  bool Quiet = false;
  int Jobs = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));

  uint32_t Bits() const {
    return (Unweighted ? decompiler::DecompileOptionUnweightedSmd : 0) |
           (KeepRotations ? decompiler::DecompileOptionKeepRotations : 0) |
           (Plain ? 0 : decompiler::DecompileOptionReadyToCompile);
  }
};

/// A model's errors and warnings, each with the model's path before it.
void PrintTroubles(std::ostream& out, const ModelOutcome& outcome) {
  for (const core::Trouble& trouble : outcome.Result.Troubles) {
    out << outcome.Model.ModelPath << ": " << (trouble.Level == core::Severity::Warning ? "Warning: " : "")
        << LineOf(trouble) << '\n';
  }
}

int Decompile(const Options& options, Invocation& invocation) {
  const auto started = std::chrono::steady_clock::now();
  const DecompilePlan plan = PlanDecompile(options.Inputs, options.Output, options.Recursive);
  for (const std::string& problem : plan.Problems) invocation.Err << "Error: " << problem << '\n';

  const bool single = plan.Models.size() == 1;
  const bool terminal = ErrorIsTerminal();
  ConsoleReport live(invocation.Err);
  ProgressLine progress(invocation.Err, terminal && !single && !options.Quiet);
  DecompileSummary summary;
  RunDecompileBatch(plan.Models, options.Bits(), options.Jobs, single && !options.Quiet ? &live : nullptr,
                    [&](const ModelOutcome& outcome, size_t done, size_t all) {
                      summary.Add(outcome);
                      progress.Clear();
                      if (options.Quiet || (!single && terminal)) {
                        PrintTroubles(invocation.Err, outcome);
                      } else if (!single) {
                        invocation.Err << PlainLines(outcome.LogText);
                      }
                      if (options.Json) {
                        invocation.Out << ModelJson(outcome) << '\n';
                      } else if (!single && outcome.Result.Succeeded()) {
                        invocation.Out << outcome.Model.OutputDirectory << '\n';
                      }
                      progress.Show(done, all, outcome.Model.ModelPath);
                    });
  progress.Clear();
  if (!options.Quiet) {
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - started;
    summary.Print(invocation.Err, took.count());
  }
  return summary.FailedCount() > 0 || !plan.Problems.empty() ? ExitFailure : ExitSuccess;
}

}  // namespace

void AddDecompileVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("decompile", "Turn compiled models into QC scripts and SMD files");
  auto options = std::make_shared<Options>();
  verb->add_option("MODEL|DIRECTORY", options->Inputs,
                   "Compiled models (.mdl, with .vvd and .vtx beside them), or folders")
      ->required();
  verb->add_option("-o,--output", options->Output,
                   "Where the files go; made if missing. Those of one MODEL go straight into it, those of several each "
                   "into a folder of the model's name below it")
      ->capture_default_str();
  verb->add_flag("--unweighted", options->Unweighted, "Write reference files without weight lists");
  verb->add_flag("--keep-rotations", options->KeepRotations, "Do not fix rotations on animations");
  verb->add_flag("--plain", options->Plain,
                 "Write the plain form: names with their folders, one $model line a model, LOD commands behind each. "
                 "Without it the sources are ready to compile");
  verb->add_flag("-r,--recursive", options->Recursive,
                 "Take every .mdl file below a DIRECTORY; each gets a folder like its path");
  verb->add_option("-j,--jobs", options->Jobs, "Models at a time")->check(CLI::Range(1, 1024))->capture_default_str();
  verb->add_flag("--json", options->Json, "Print one JSON object a model, one a line, on standard output");
  verb->add_flag("-q,--quiet", options->Quiet, "Print errors and warnings only");
  verb->footer(Examples);
  verb->callback(
      [options, &invocation] { invocation.Run = [options, &invocation] { return Decompile(*options, invocation); }; });
}

}  // namespace tarnwick::cli

#include "cli/decompile_verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "cli/console_host.h"
#include "cli/interrupt.h"
#include "cli/tool_directories.h"
#include "jobs/decompile_tree.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli decompile -o sources hair.mdl
  tarnwick-cli decompile -o sources -r game/models
  tarnwick-cli decompile --json -o sources a.mdl b.mdl >result.jsonl
  tarnwick-cli decompile -o sources -r pak01_dir.vpk:models/props
  tarnwick-cli decompile -o crate --materials --game ~/games/mod game:models/props/crate.mdl)";

struct Options {
  std::vector<std::string> Inputs;
  std::string Output = ".";
  ToolDirectories Directories;
  bool Unweighted = false;
  bool KeepRotations = false;
  bool Plain = false;
  bool NoPhysics = false;
  bool NoAnimations = false;
  bool Recursive = false;
  bool OwnFolders = false;
  bool Materials = false;
  std::string TextureFormat = "tga";
  bool Json = false;
  bool Quiet = false;
  int Jobs = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));

  uint32_t Bits() const {
    return (Unweighted ? decompiler::DecompileOptionUnweightedSmd : 0) |
           (KeepRotations ? decompiler::DecompileOptionKeepRotations : 0) |
           (NoPhysics ? decompiler::DecompileOptionNoPhysics : 0) |
           (NoAnimations ? decompiler::DecompileOptionNoAnimations : 0) |
           (Plain ? 0 : decompiler::DecompileOptionReadyToCompile);
  }
};

/// One line of JSON for a model; docs/command-line.md describes it.
std::string ModelJson(const jobs::ItemResult& result) {
  nlohmann::ordered_json model;
  model["model"] = result.Input;
  model["outcome"] = OutcomeWord(result.Judged);
  model["output"] = result.Target;
  model["files"] = nlohmann::ordered_json::array();
  for (const core::WrittenFile& file : result.Files)
    model["files"].push_back({{"path", file.Path}, {"bytes", file.Size}});
  model["bytes"] = result.Bytes();
  model["seconds"] = result.Seconds;
  model["warnings"] = TroubleLines(result, core::Severity::Warning);
  model["errors"] = TroubleLines(result, core::Severity::Error);
  model["lost"] = nlohmann::ordered_json::array();
  for (const decompiler::LostKind& lost : result.Lost)
    model["lost"].push_back({{"kind", lost.Kind}, {"count", lost.Count}});
  // Names inside models are bytes in no known encoding; JSON takes UTF-8 only.
  return model.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

int Decompile(Options& options, Invocation& invocation) {
  const jobs::DecompileTree job{
      .Inputs = options.Inputs,
      .Content = options.Directories.ContentFor(options.Inputs, options.Materials, invocation.Err),
      .OutputDirectory = options.Output,
      .Recursive = options.Recursive,
      .OwnFolders = options.OwnFolders,
      .Options = options.Bits(),
      .MaterialFormat = options.Materials ? options.TextureFormat : std::string(),
      .Threads = options.Jobs};
  const jobs::JobPlan plan = jobs::Plan(job);
  const bool single = plan.Items.size() == 1;
  const auto resultLine = [&](const jobs::ItemResult& result) {
    if (options.Json) return ModelJson(result);
    return result.Succeeded() && !single ? result.Target : std::string();
  };
  const InterruptFlag interrupt;
  ConsoleHost host(invocation.Out, invocation.Err, {.Item = "model", .Quiet = options.Quiet, .ResultLine = resultLine});
  return ExitCodeOf(jobs::Run(job, plan, host, interrupt.Token()));
}

}  // namespace

void AddDecompileVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("decompile", "Turn compiled models into QC scripts and SMD files");
  auto options = std::make_shared<Options>();
  verb->add_option("MODEL|DIRECTORY", options->Inputs,
                   "Compiled models (.mdl, with .vvd and .vtx beside them), or folders; on the disk, in an archive "
                   "(pak01_dir.vpk:models/crate.mdl), or in the game (game:models/crate.mdl)")
      ->required();
  verb->add_option("-o,--output", options->Output,
                   "Where the files go; made if missing. Those of one MODEL go straight into it, those of several each "
                   "into a folder of the model's name below it")
      ->type_name("DIR")
      ->capture_default_str();
  verb->add_flag("--own-folders", options->OwnFolders, "Give a single MODEL a folder of its own too");
  verb->add_flag("--unweighted", options->Unweighted, "Write reference files without weight lists");
  verb->add_flag("--keep-rotations", options->KeepRotations, "Do not fix rotations on animations");
  verb->add_flag("--plain", options->Plain,
                 "Write the plain form: names with their folders, one $model line a model, LOD commands behind each. "
                 "Without it the sources are ready to compile");
  verb->add_flag("--no-physics", options->NoPhysics, "Leave the physics file (.phy) of a model alone");
  verb->add_flag("--no-animations", options->NoAnimations,
                 "Leave animations and sequences out of sources that are ready to compile; the script shows the first "
                 "mesh at rest");
  verb->add_flag("-r,--recursive", options->Recursive,
                 "Take every .mdl file below a DIRECTORY; each gets a folder like its path");
  verb->add_flag(
      "--materials", options->Materials,
      "Write the materials of each model too, and their textures as images, below the folder materials beside "
      "its sources; what is missing is told");
  verb->add_option("--texture-format", options->TextureFormat, "The format of these images: tga or png")
      ->check(CLI::IsMember({"tga", "png"}))
      ->capture_default_str();
  options->Directories.AddGameOption(*verb);
  verb->add_option("-j,--jobs", options->Jobs, "Models at a time")
      ->type_name("N")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  verb->add_flag("--json", options->Json, "Print one JSON object a model, one a line, on standard output");
  verb->add_flag("-q,--quiet", options->Quiet, "Print errors and warnings only");
  verb->footer(Examples);
  verb->callback(
      [options, &invocation] { invocation.Run = [options, &invocation] { return Decompile(*options, invocation); }; });
}

}  // namespace tarnwick::cli

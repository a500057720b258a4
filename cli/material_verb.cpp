#include "cli/material_verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/interrupt.h"
#include "cli/material_run.h"
#include "cli/terminal.h"
#include "core/paths.h"
#include "images/tga_path.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli material --game ~/games/mod -d props crate.png barrel.png
  tarnwick-cli material --game ~/games/mod -d props --normal brick_n.png --specular brick_s.png --envmap
                        --mask normal --contrast 0.5 brick.png
  tarnwick-cli material --game ~/games/mod -d walls --for-maps --shader LightmappedGeneric wall.tga)";

struct Options {
  tools::MaterialCompile Job;
  ToolDirectories Directories;
  std::vector<std::string> Masks;
  bool ForMaps = false;
  bool Json = false;
  bool Quiet = false;
};

/// The form's values as the options give them: a map that is named is used.
tools::MaterialCompile JobOf(const Options& options) {
  tools::MaterialCompile job = options.Job;
  job.ModelPath = !options.ForMaps;
  job.HasNormalMap = !job.NormalMap.empty();
  job.HasGlowMap = !job.GlowMap.empty();
  const auto has = [&](const char* mask) {
    return std::find(options.Masks.begin(), options.Masks.end(), mask) != options.Masks.end();
  };
  job.MaskInBaseAlpha = has("base");
  job.MaskInNormalAlpha = has("normal");
  job.MaskInIllumAlpha = has("illum");
  return job;
}

std::string OutcomeJson(const MaterialOutcome& outcome) {
  nlohmann::ordered_json json;
  json["image"] = outcome.Image;
  json["outcome"] = outcome.Succeeded() ? "ok" : outcome.Stopped ? "stopped" : "failed";
  json["command"] = outcome.CommandLine;
  json["files"] = outcome.Files;
  json["errors"] = outcome.Errors;
  // A tool's words are bytes in no known encoding; JSON takes UTF-8 only.
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

/// Tells of images and maps that would become the same TGA file, the later over the earlier.
void WarnOfClashes(const tools::MaterialCompile& job, std::ostream& err) {
  std::map<std::string, std::string> sources;  // by the name of their TGA file
  std::vector<std::string> all = job.Images;
  for (const std::string* map : {&job.NormalMap, &job.GlowMap, &job.SpecularMap}) {
    if (!map->empty()) all.push_back(*map);
  }
  for (const std::string& source : all) {
    const auto [first, isNew] = sources.emplace(images::TgaPath(source, ""), source);
    if (!isNew && first->second != source) {
      err << "Warning: " << first->second << " and " << source << " both become " << core::LastComponent(first->first)
          << '\n';
    }
  }
}

/// Prints the log unless that is unwanted. Boxes come back with their image's outcome.
class LogReport : public core::Report {
 public:
  LogReport(std::ostream& err, bool quiet) : m_err(err), m_quiet(quiet) {}
  void Log(std::string_view text) override {
    if (!m_quiet) m_err << PlainLines(text) << std::flush;
  }
  void Tell(const core::Trouble&) override {}

 private:
  std::ostream& m_err;
  bool m_quiet;
};

int CompileImages(Options& options, Invocation& invocation) {
  options.Directories.FillFromSettings(invocation.Err);
  const std::string& game = options.Directories.Game;
  std::error_code ignored;
  if (game.empty()) {
    invocation.Err << "Error: no game directory is set; name it with --game\n";
    return ExitUsage;
  }
  if (!std::filesystem::is_directory(core::NativePath(game), ignored)) {
    invocation.Err << "Error: the game directory " << game << " does not exist\n";
    return ExitFailure;
  }
  const InterruptFlag interrupt;
  tools::ToolRunOptions run;
  run.Start = options.Directories.Start();
  run.Stop = &interrupt.Flag();
  run.AnnounceStart = false;
  LogReport report(invocation.Err, options.Quiet);
  const tools::MaterialCompile job = JobOf(options);
  WarnOfClashes(job, invocation.Err);
  size_t succeeded = 0;
  RunMaterials(job, options.Directories, images::ImageWorker(), run, report, [&](const MaterialOutcome& outcome) {
    if (outcome.Succeeded()) ++succeeded;
    for (const std::string& error : outcome.Errors) {
      invocation.Err << outcome.Image << ": " << error << '\n';
    }
    if (outcome.Stopped) invocation.Err << outcome.Image << ": stopped\n";
    if (options.Json) {
      invocation.Out << OutcomeJson(outcome) << std::endl;
    } else {
      for (const std::string& file : outcome.Files) invocation.Out << file << std::endl;
    }
  });
  if (job.Images.size() > 1 && !options.Quiet) {
    invocation.Err << succeeded << " of " << job.Images.size() << " materials compiled\n";
  }
  return succeeded == job.Images.size() ? ExitSuccess : ExitFailure;
}

}  // namespace

void AddMaterialVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("material", "Compile images to textures and materials of a game with vtex");
  auto options = std::make_shared<Options>();
  tools::MaterialCompile& job = options->Job;
  verb->add_option("IMAGE", job.Images, "Images (tga, jpg, gif, bmp, png, dds and more), each a material of its own")
      ->required();
  options->Directories.AddOptions(*verb);
  verb->add_option("-d,--directory", job.Directory,
                   "Compiled material directory, below materials/models of the game directory; made if missing");
  verb->add_flag("--for-maps", options->ForMaps, "Take the directory as below materials (for map textures)");
  verb->add_option("--shader", job.Shader, "VertexLitGeneric for models, UnlitGeneric or LightmappedGeneric for maps")
      ->capture_default_str();
  CLI::Option* translucent =
      verb->add_flag("--translucent", job.Translucent, "The material is translucent; the image's alpha is the mask");
  verb->add_option("--normal", job.NormalMap, "Normal map image");
  CLI::Option* glow = verb->add_option("--glow", job.GlowMap, "Glow map image; it replaces the base alpha");
  glow->excludes(translucent);
  verb->add_flag("--glow-texture", job.UseSelfIllumTexture,
                 "Use $selfillumtexture: keep the glow map as a texture of its own (depends on the shader)")
      ->needs(glow);
  CLI::Option* envMap = verb->add_flag("--envmap", job.EnvMap, "Reflect the environment (env_cubemap)");
  verb->add_option("--mask", options->Masks,
                   "Take the reflection's mask from the alpha of this map, which the specular map replaces if given: "
                   "base, normal or illum; may be given more than once")
      ->check(CLI::IsMember({"base", "normal", "illum"}))
      ->allow_extra_args(false);
  verb->add_option("--contrast", job.EnvMapContrast, "Envmap contrast: one value, or three in quotes")->needs(envMap);
  verb->add_option("--saturation", job.EnvMapSaturation, "Envmap saturation, the same")->needs(envMap);
  verb->add_option("--tint", job.EnvMapTint, "Envmap tint, the same")->needs(envMap);
  verb->add_option("--specular", job.SpecularMap, "Specular map image; it is converted to greyscale");
  verb->add_flag("--json", options->Json, "Print one JSON object an image, one a line, on standard output");
  verb->add_flag("-q,--quiet", options->Quiet, "Print errors and the files that were written only");
  verb->footer(Examples);
  verb->callback([options, &invocation] {
    invocation.Run = [options, &invocation] { return CompileImages(*options, invocation); };
  });
}

}  // namespace tarnwick::cli

#include "cli/material_verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/console_host.h"
#include "cli/interrupt.h"
#include "cli/tool_directories.h"
#include "jobs/compile_images.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli material --game ~/games/mod -d props crate.png barrel.png
  tarnwick-cli material -d props --normal brick_n.png --specular brick_s.png \
      --envmap --mask normal --contrast 0.5 brick.png
  tarnwick-cli material -d walls --for-maps --shader LightmappedGeneric wall.tga)";

struct Options {
  tools::MaterialCompile Form;
  ToolDirectories Directories;
  std::vector<std::string> Masks;
  bool ForMaps = false;
  bool Force = false;
  bool Json = false;
  bool Quiet = false;
};

/// The form's values as the options give them: a map that is named is used.
tools::MaterialCompile FormOf(const Options& options) {
  tools::MaterialCompile form = options.Form;
  form.ModelPath = !options.ForMaps;
  form.HasNormalMap = !form.NormalMap.empty();
  form.HasGlowMap = !form.GlowMap.empty();
  const auto has = [&](const char* mask) {
    return std::find(options.Masks.begin(), options.Masks.end(), mask) != options.Masks.end();
  };
  form.MaskInBaseAlpha = has("base");
  form.MaskInNormalAlpha = has("normal");
  form.MaskInIllumAlpha = has("illum");
  return form;
}

/// One line of JSON for an image; docs/materials.md describes it.
std::string ImageJson(const jobs::ItemResult& result) {
  nlohmann::ordered_json json;
  json["image"] = result.Input;
  json["outcome"] = OutcomeWord(result.Judged);
  json["command"] = result.CommandLine;
  json["files"] = nlohmann::ordered_json::array();
  for (const core::WrittenFile& file : result.Files) json["files"].push_back(file.Path);
  json["warnings"] = TroubleLines(result, core::Severity::Warning);
  json["errors"] = TroubleLines(result, core::Severity::Error);
  // A tool's words are bytes in no known encoding; JSON takes UTF-8 only.
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

int CompileImages(Options& options, Invocation& invocation) {
  options.Directories.FillFromSettings(invocation.Err);
  const jobs::CompileImages job{.Form = FormOf(options),
                                .SdkDirectory = options.Directories.Sdk,
                                .GameDirectory = options.Directories.Game,
                                .Start = options.Directories.Start(),
                                .UseDamaged = options.Force,
                                .UncommonFormats = options.Directories.UncommonFormats};
  if (job.GameDirectory.empty()) {
    invocation.Err << "Error: no game directory is set; name it with --game\n";
    return ExitUsage;
  }
  const auto resultLine = [&](const jobs::ItemResult& result) {
    return options.Json ? ImageJson(result) : FileLines(result);
  };
  const InterruptFlag interrupt;
  ConsoleHost host(invocation.Out, invocation.Err, {.Item = "image", .Quiet = options.Quiet, .ResultLine = resultLine});
  return ExitCodeOf(jobs::Run(job, host, interrupt.Token()));
}

}  // namespace

void AddMaterialVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("material", "Compile images to textures and materials of a game with vtex");
  auto options = std::make_shared<Options>();
  tools::MaterialCompile& form = options->Form;
  verb->add_option("IMAGE", form.Images, "Images (tga, jpg, gif, bmp, png, dds and more), each a material of its own")
      ->required();
  options->Directories.AddOptions(*verb);
  verb->add_option("-d,--directory", form.Directory,
                   "Compiled material directory, below materials/models of the game directory; made if missing")
      ->type_name("DIR");
  verb->add_flag("--for-maps", options->ForMaps, "Take the directory as below materials (for map textures)");
  verb->add_option("--shader", form.Shader, "VertexLitGeneric for models, UnlitGeneric or LightmappedGeneric for maps")
      ->type_name("NAME")
      ->capture_default_str();
  CLI::Option* translucent =
      verb->add_flag("--translucent", form.Translucent, "The material is translucent; the image's alpha is the mask");
  verb->add_option("--normal", form.NormalMap, "Normal map image")->type_name("FILE");
  CLI::Option* glow =
      verb->add_option("--glow", form.GlowMap, "Glow map image; it replaces the base alpha")->type_name("FILE");
  glow->excludes(translucent);
  verb->add_flag("--glow-texture", form.UseSelfIllumTexture,
                 "Use $selfillumtexture: keep the glow map as a texture of its own (depends on the shader)")
      ->needs(glow);
  CLI::Option* envMap = verb->add_flag("--envmap", form.EnvMap, "Reflect the environment (env_cubemap)");
  verb->add_option("--mask", options->Masks,
                   "Take the reflection's mask from the alpha of this map, which the specular map replaces if given: "
                   "base, normal or illum; may be given more than once")
      ->check(CLI::IsMember({"base", "normal", "illum"}))
      ->allow_extra_args(false);
  verb->add_option("--contrast", form.EnvMapContrast, "Envmap contrast: one value, or three in quotes")
      ->type_name("VALUE")
      ->needs(envMap);
  verb->add_option("--saturation", form.EnvMapSaturation, "Envmap saturation, the same")
      ->type_name("VALUE")
      ->needs(envMap);
  verb->add_option("--tint", form.EnvMapTint, "Envmap tint, the same")->type_name("VALUE")->needs(envMap);
  verb->add_option("--specular", form.SpecularMap, "Specular map image; it is converted to greyscale")
      ->type_name("FILE");
  verb->add_flag("--force", options->Force,
                 "Use images that are cut off or damaged too, with what can be read of them");
  verb->add_flag("--json", options->Json, "Print one JSON object an image, one a line, on standard output");
  verb->add_flag("-q,--quiet", options->Quiet, "Print errors and the files that were written only");
  verb->footer(Examples);
  verb->callback([options, &invocation] {
    invocation.Run = [options, &invocation] { return CompileImages(*options, invocation); };
  });
}

}  // namespace tarnwick::cli

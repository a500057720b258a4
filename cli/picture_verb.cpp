#include "cli/picture_verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "cli/console_host.h"
#include "cli/interrupt.h"
#include "cli/tool_directories.h"
#include "core/number_parse.h"
#include "core/paths.h"
#include "jobs/draw_pictures.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli picture -o crate.png props/crate.mdl
  tarnwick-cli picture -o pictures -r --size 256x256 --transparent game/models
  tarnwick-cli picture -o run.png --sequence run --frame 5 --angle 90,10 hero.mdl)";

struct Options {
  std::vector<std::string> Inputs;
  std::string Output;
  std::string Size = "512x512";
  std::string Sequence;
  std::string Angle = "30,15";
  int Frame = 0;
  int Skin = 0;
  bool Wireframe = false;
  bool Transparent = false;
  bool Recursive = false;
  bool Json = false;
  bool Quiet = false;
  int Jobs = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  ToolDirectories Directories;
};

/// Two numbers with `separator` between them; nothing for any other text.
std::optional<std::array<double, 2>> TwoNumbers(std::string_view text, std::string_view separators) {
  const size_t middle = text.find_first_of(separators, 1);
  if (middle == std::string_view::npos) return std::nullopt;
  std::array<double, 2> numbers{};
  const std::array<std::string_view, 2> parts{text.substr(0, middle), text.substr(middle + 1)};
  for (size_t i = 0; i < 2; ++i) {
    size_t length = 0;
    numbers[i] = core::ParseReal(parts[i], &length);
    if (length == 0 || length != parts[i].size() || !std::isfinite(numbers[i])) return std::nullopt;
  }
  return numbers;
}

/// What is wrong with a size; "" for a good one, which is taken.
std::string TakeSize(const std::string& text, jobs::DrawPictures& job) {
  const auto size = TwoNumbers(text, "xX");
  const auto isSide = [](double side) { return side >= 1 && side <= jobs::LargestPicture && side == std::floor(side); };
  if (!size || !isSide((*size)[0]) || !isSide((*size)[1])) {
    return "\"" + text + "\" is no size: two whole numbers from 1 to " + std::to_string(jobs::LargestPicture) +
           " are wanted, such as 512x512";
  }
  job.Width = static_cast<int>((*size)[0]);
  job.Height = static_cast<int>((*size)[1]);
  return "";
}

std::string TakeAngle(const std::string& text, jobs::DrawPictures& job) {
  constexpr double MostYaw = 3600, MostPitch = 90;
  const auto angle = TwoNumbers(text, ",");
  if (!angle || std::abs((*angle)[0]) > MostYaw || std::abs((*angle)[1]) > MostPitch) {
    return "\"" + text + "\" is no angle: yaw and pitch (-90 to 90) in degrees are wanted, such as 30,15";
  }
  job.Angle = {static_cast<float>((*angle)[0]), static_cast<float>((*angle)[1])};
  return "";
}

/// One line of JSON for a picture; docs/command-line.md describes it.
std::string PictureJson(const jobs::ItemResult& result) {
  nlohmann::ordered_json json;
  json["model"] = result.Input;
  json["outcome"] = OutcomeWord(result.Judged);
  json["picture"] = result.Files.empty() ? std::string() : result.Files.front().Path;
  json["missing"] = nlohmann::ordered_json::array();
  for (const jobs::MissingContent& missing : result.Missing) {
    json["missing"].push_back(
        {{"name", missing.Name}, {"neededBy", missing.NeededBy}, {"reason", missing.Reason}, {"tried", missing.Tried}});
  }
  json["seconds"] = result.Seconds;
  json["warnings"] = TroubleLines(result, core::Severity::Warning);
  json["errors"] = TroubleLines(result, core::Severity::Error);
  // Names inside models are bytes in no known encoding; JSON takes UTF-8 only.
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

/// What is wrong with where the pictures are to go; "" if nothing is.
std::string OutputProblem(const Options& options) {
  std::error_code ignored;
  const std::filesystem::path output = core::NativePath(options.Output);
  if (std::filesystem::is_directory(output, ignored)) return "";
  const std::string ending = core::LowerAscii(core::PathText(output.extension()));
  for (const std::string_view other : {".jpg", ".jpeg", ".bmp", ".tga", ".gif", ".tif", ".tiff", ".webp", ".dds"}) {
    if (ending == other) return "pictures are written as PNG, not as " + ending + ": " + options.Output;
  }
  return "";
}

int DrawPictures(Options& options, Invocation& invocation) {
  options.Directories.FillFromSettings(invocation.Err);
  jobs::DrawPictures job{.Inputs = options.Inputs,
                         .Content = options.Directories.ContentFor(options.Inputs, true, invocation.Err),
                         .Output = options.Output,
                         .Recursive = options.Recursive,
                         .Frame = options.Frame,
                         .Skin = options.Skin,
                         .Wireframe = options.Wireframe,
                         .Transparent = options.Transparent,
                         .Threads = options.Jobs};
  if (!options.Sequence.empty()) job.Sequence = options.Sequence;
  for (const std::string& problem :
       {TakeSize(options.Size, job), TakeAngle(options.Angle, job), OutputProblem(options)}) {
    if (problem.empty()) continue;
    invocation.Err << "Error: " << problem << '\n';
    return ExitUsage;
  }
  const auto resultLine = [&](const jobs::ItemResult& result) {
    if (options.Json) return PictureJson(result);
    return options.Quiet ? std::string() : FileLines(result);
  };
  const InterruptFlag interrupt;
  ConsoleHost host(invocation.Out, invocation.Err,
                   {.Item = "model", .Quiet = options.Quiet, .ShowsLog = false, .ResultLine = resultLine});
  return ExitCodeOf(jobs::Run(job, host, interrupt.Token()));
}

}  // namespace

void AddPictureVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("picture", "Draw compiled models as pictures (PNG), without a display");
  auto options = std::make_shared<Options>();
  verb->add_option("MODEL|DIRECTORY", options->Inputs,
                   "Compiled models (.mdl, with .vvd and .vtx beside them), or folders; both also in archives "
                   "(pak01_dir.vpk:models/crate.mdl) and in the game (game:models/crate.mdl)")
      ->required();
  verb->add_option("-o,--output", options->Output,
                   "The picture of one MODEL, if it ends in .png; else a folder, made if missing, for a picture named "
                   "like each model")
      ->type_name("FILE|DIR")
      ->required();
  verb->add_option("--size", options->Size, "Width and height of a picture in pixels, WIDTHxHEIGHT")
      ->type_name("WxH")
      ->capture_default_str();
  verb->add_option("--sequence", options->Sequence, "The sequence in which the model stands (the first one)")
      ->type_name("NAME");
  verb->add_option("--frame", options->Frame, "The frame of the sequence, counted from 0")
      ->type_name("N")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  verb->add_option("--skin", options->Skin, "The skin, counted from 0")
      ->type_name("N")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  verb->add_option("--angle", options->Angle,
                   "From where it is seen, YAW,PITCH in degrees: 0,0 is the front, a rising yaw goes to the model's "
                   "left, a rising pitch above it")
      ->type_name("YAW,PITCH")
      ->capture_default_str();
  verb->add_flag("--wireframe", options->Wireframe, "Draw the edges of the triangles");
  verb->add_flag("--transparent", options->Transparent, "Draw no background");
  options->Directories.AddGameOption(*verb);
  verb->add_flag("-r,--recursive", options->Recursive,
                 "Take every .mdl file below a DIRECTORY; each picture gets a path like its model's");
  verb->add_option("-j,--jobs", options->Jobs, "Models at a time")
      ->type_name("N")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  verb->add_flag("--json", options->Json, "Print one JSON object a model, one a line, on standard output");
  verb->add_flag("-q,--quiet", options->Quiet, "Print errors and warnings only");
  verb->footer(Examples);
  verb->callback([options, &invocation] {
    invocation.Run = [options, &invocation] { return DrawPictures(*options, invocation); };
  });
}

}  // namespace tarnwick::cli

#include "cli/smd_verb.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/console_report.h"
#include "cli/terminal.h"
#include "core/paths.h"
#include "smd/material_replacement.h"
#include "smd/smd_info.h"

namespace tarnwick::cli {

namespace {

constexpr const char* Examples = R"(Examples:
  tarnwick-cli smd info crate.smd
  tarnwick-cli smd replace crate.smd wood.bmp oak.bmp --yes
  tarnwick-cli smd replace crate.smd crate_lod1.smd wood.bmp oak.bmp --yes)";

struct Options {
  std::vector<std::string> Files;  // for replace, with the old and the new name behind them
  bool Json = false;
  bool Yes = false;
};

std::string Json(const std::string& path, const smd::SmdInfo& info) {
  nlohmann::ordered_json json{{"file", path},
                              {"complete", info.BadLine == 0 && info.Error.empty()},
                              {"bones", info.Summary.BoneCount},
                              {"frames", info.Summary.FrameCount},
                              {"triangles", info.Summary.TriangleCount},
                              {"materials", nlohmann::ordered_json::array()}};
  for (const auto& material : info.Summary.Materials) {
    json["materials"].push_back({{"name", material.Name}, {"faces", material.FaceCount}});
  }
  if (info.BadLine != 0) json["badLine"] = info.BadLine;
  if (!info.Error.empty()) json["error"] = info.Error;
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

int ShowInfo(const Options& options, Invocation& invocation) {
  int exitCode = ExitSuccess;
  for (const std::string& path : options.Files) {
    const smd::SmdInfo info = smd::InspectSmd(path);
    if (!info.Error.empty()) {
      invocation.Err << "Error: " << path << ": " << info.Error << '\n';
    } else if (info.BadLine != 0) {
      invocation.Err << "Error: " << path << ": line " << info.BadLine
                     << " is no line of an SMD file; the figures are those up to it\n";
    }
    if (!info.Error.empty() || info.BadLine != 0) exitCode = ExitFailure;
    if (options.Json) {
      invocation.Out << Json(path, info) << '\n';
    } else if (info.Opened) {
      if (options.Files.size() > 1) invocation.Out << path << ":\n";
      invocation.Out << "Frames:\t" << info.Summary.FrameCount << '\n' << PlainLines(info.Text);
    }
  }
  return exitCode;
}

bool Agreed(const smd::MaterialReplacement& replacement, std::ostream& out) {
  out << PlainLines(smd::ReplacementQuestion(replacement)) << " [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  return core::EqualIgnoringCase(answer, "y") || core::EqualIgnoringCase(answer, "yes");
}

int ReplaceIn(const smd::MaterialReplacement& replacement, bool yes, Invocation& invocation) {
  ConsoleReport report(invocation.Err);
  if (!smd::CheckReplacement(replacement, report)) return ExitUsage;
  if (!yes && !Agreed(replacement, invocation.Err)) {
    invocation.Err << "Nothing was changed\n";
    return ExitFailure;
  }
  const std::optional<uint64_t> count = smd::ReplaceMaterial(replacement, report);
  if (!count) return ExitFailure;
  invocation.Out << replacement.Path << ": " << *count << " replaced\n";
  return ExitSuccess;
}

int Replace(const Options& options, Invocation& invocation) {
  const size_t files = options.Files.size() - 2;
  int exitCode = ExitSuccess;
  for (size_t i = 0; i < files; ++i) {
    const int code =
        ReplaceIn({options.Files[i], options.Files[files], options.Files[files + 1]}, options.Yes, invocation);
    if (code != ExitSuccess) exitCode = code;
  }
  return exitCode;
}

}  // namespace

void AddSmdVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("smd", "Inspect SMD files, rename a material in them");
  verb->require_subcommand(1);
  verb->footer(Examples);
  auto options = std::make_shared<Options>();
  CLI::App* info = verb->add_subcommand("info", "Bones, frames, triangles, and the faces of each material");
  info->add_option("FILE", options->Files, "SMD files")->required();
  info->add_flag("--json", options->Json, "Print one JSON object a file, one a line");
  info->callback(
      [options, &invocation] { invocation.Run = [options, &invocation] { return ShowInfo(*options, invocation); }; });
  CLI::App* replace = verb->add_subcommand("replace", "Replace a name by another throughout SMD files, in place");
  replace
      ->add_option("FILE... OLD NEW", options->Files,
                   "SMD files, behind them the text to be replaced, wherever it stands, and the text in its place")
      ->required()
      ->expected(3, std::numeric_limits<int>::max());
  replace->add_flag("-y,--yes", options->Yes, "Do not ask");
  replace->callback(
      [options, &invocation] { invocation.Run = [options, &invocation] { return Replace(*options, invocation); }; });
}

}  // namespace tarnwick::cli

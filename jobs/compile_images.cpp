#include "jobs/compile_images.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <vector>

#include "core/paths.h"
#include "core/whole_path.h"
#include "images/tga_path.h"
#include "jobs/image_questions.h"
#include "jobs/last_line.h"
#include "jobs/logged_warning.h"
#include "jobs/not_begun.h"
#include "jobs/written_anew.h"
#include "tools/sdk_tools.h"

namespace tarnwick::jobs {

namespace {

/// The file that vtex makes of the TGA file at `tga`, with another extension: it stands below "materials" where the TGA
/// file stands below "materialsrc".
std::string CompiledPath(const CompileImages& job, const std::string& tga, std::string_view extension) {
  const std::string folder =
      job.GameDirectory + (job.Form.ModelPath ? "/materials/models/" : "/materials/") + job.Form.Directory;
  const std::string_view name = core::LastComponent(tga);
  const std::string stem(name.substr(0, name.rfind('.')));
  return core::PathText(core::NativePath(core::PathBelow(folder, stem + std::string(extension))).lexically_normal());
}

/// Images and maps of which several become one TGA file, the later over the earlier, a sentence each.
std::vector<std::string> Clashes(const tools::MaterialCompile& form) {
  std::vector<std::string> all = form.Images;
  const auto add = [&](bool wanted, const std::string& map) {
    if (wanted && !map.empty()) all.push_back(map);
  };
  add(form.HasNormalMap, form.NormalMap);
  add(form.HasGlowMap, form.GlowMap);
  add(true, form.SpecularMap);
  std::map<std::string, std::string> sources;  // by the name of their TGA file
  std::vector<std::string> clashes;
  for (const std::string& source : all) {
    const auto [first, isNew] = sources.emplace(images::TgaPath(source, ""), source);
    if (isNew || first->second == source) continue;
    clashes.push_back(first->second + " and " + source + " both become " +
                      std::string(core::LastComponent(first->first)));
  }
  return clashes;
}

/// What vtex was to write and has not; "" if it has.
std::string MissingOutput(const tools::MaterialResult& result, const FileBefore& texture, const std::string& path) {
  if (texture.IsWrittenAnew()) return {};
  const std::string last = LastLine(result.Run.Outcome.Log.Text());
  std::string text = "vtex wrote no " + path;
  if (texture.Existed()) text += "; the file there is an older one";
  return last.empty() ? text : text + " (" + last + ")";
}

void CompileOne(const CompileImages& job, const images::ImageWorker& worker, size_t index, ItemRun& run) {
  tools::MaterialCompileCalls calls{run};
  calls.ConvertToTga = [&](const std::string& source, const std::optional<std::string>& alpha,
                           const std::string& directory, std::string& log) {
    if (run.Stop.stop_requested()) return std::string();
    KeepingReport lines(run, log);
    return images::ConvertMapToTga(source, alpha, directory, ConversionFor(run, lines, worker, job.UseDamaged));
  };
  calls.Run.Start = job.Start;
  calls.Run.Stop = run.Stop;
  calls.Run.AnnounceStart = false;
  calls.Run.OnText = [&](std::string_view text) { run.ToolText(text); };
  calls.OnToolStart = [&](const std::string& commandLine) { run.Command(commandLine); };
  calls.OnWarning = [&](const std::string& warning) { return TellLoggedWarning(run, warning); };

  const FileBefore texture(run.Result.Target);
  const std::string materialPath = CompiledPath(job, images::TgaPath(run.Result.Input, ""), ".vmt");
  const FileBefore material(materialPath);
  const tools::MaterialResult result = tools::RunVtex(
      job.Form, index, tools::ToolInUse(job.SdkDirectory, tools::Vtex).Directory, job.GameDirectory, calls);
  run.Result.Shown = result.Log;
  run.Result.Notes = result.Run.Notes;
  if (run.Stop.stop_requested()) return run.Fail(core::TroubleKind::Stopped, "stopped");
  if (result.Maps.Base.empty() && run.Result.First(core::Severity::Error) == nullptr) {
    return run.Fail(core::TroubleKind::Unreadable, "the image could not be converted", run.Result.Input);
  }
  if (!result.ToolFound || run.Result.First(core::Severity::Error) != nullptr) return;
  const auto& end = result.Run.Outcome.End;
  if (end && end->ExitCode != 0) return run.Fail(core::TroubleKind::Tool, "vtex did not succeed");
  if (const std::string missing = MissingOutput(result, texture, run.Result.Target); !missing.empty()) {
    return run.Fail(core::TroubleKind::Tool, missing, run.Result.Target);
  }
  const auto add = [&](const std::string& path) {
    std::error_code ignored;
    run.Result.Files.push_back({path, std::filesystem::file_size(core::NativePath(path), ignored)});
  };
  add(run.Result.Target);
  if (material.IsWrittenAnew()) add(materialPath);
}

}  // namespace

std::optional<core::Trouble> ObstacleOf(const CompileImages& job) {
  std::error_code ignored;
  if (job.GameDirectory.empty()) {
    return core::Trouble{.Kind = core::TroubleKind::Missing, .Text = "No game directory is set."};
  }
  if (std::filesystem::is_directory(core::NativePath(job.GameDirectory), ignored)) return std::nullopt;
  return core::Trouble{.Kind = core::TroubleKind::Missing,
                       .File = job.GameDirectory,
                       .Text = "The game directory " + job.GameDirectory + " does not exist."};
}

JobPlan Plan(const CompileImages& job) {
  JobPlan plan;
  for (const std::string& image : job.Form.Images) {
    plan.Items.push_back({image, CompiledPath(job, images::TgaPath(image, ""), ".vtf")});
  }
  for (const std::string& clash : Clashes(job.Form)) {
    plan.Troubles.push_back({.Level = core::Severity::Warning, .Kind = core::TroubleKind::Mismatch, .Text = clash});
  }
  return plan;
}

JobResult Run(const CompileImages& job, Host& host, const std::stop_token& stop) {
  const JobPlan plan = Plan(job);
  if (const auto obstacle = ObstacleOf(job)) return NotBegun(plan, *obstacle, host);
  if (job.Form.Directory.empty() && !host.Ask({.Kind = QuestionKind::NoDirectory,
                                               .Text = "No material output directory specified.\r\n"
                                                       "Do you want materials in materials/models dir ?",
                                               .Caption = "Warning",
                                               .Assumed = true})) {
    return NotBegun(plan, NotWanted(), host);
  }
  std::string clashes;
  for (const core::Trouble& clash : plan.Troubles) clashes += clash.Text + ".\n";
  if (!clashes.empty() && !host.Ask({.Kind = QuestionKind::SameTarget,
                                     .Text = clashes + "The later one takes the place of the earlier one.",
                                     .Caption = "Warning",
                                     .Yes = "Go on",
                                     .Assumed = true})) {
    return NotBegun(plan, NotWanted(), host);
  }
  if (tools::ToolInUse(job.SdkDirectory, tools::Vtex).StandsIn) {
    host.On(Line{NoItem, LineSource::Log, tools::LineKind::Plain, tools::OwnToolNote(tools::Vtex) + "\r\n"});
  }
  images::ImageWorker worker;
  worker.ReadFamiliarOnly(!job.UncommonFormats);
  worker.StopWith(stop);
  return RunItems(plan, {}, host, stop, [&](size_t index, ItemRun& run) { CompileOne(job, worker, index, run); });
}

}  // namespace tarnwick::jobs

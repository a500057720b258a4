#include "pages/vtf_job.h"

#include <algorithm>
#include <atomic>
#include <filesystem>

#include "core/paths.h"
#include "core/text_report.h"
#include "images/conversion.h"
#include "pages/create_directory_box.h"
#include "pages/whole_text.h"

namespace tarnwick::pages {

namespace fs = std::filesystem;

namespace {

using Event = JobEvent<VtfOutcome>;

constexpr int PictureSide = 512;  // pixels

/// When the file was written; nothing if there is none.
std::optional<fs::file_time_type> WriteTime(const std::string& path) {
  std::error_code error;
  const auto time = fs::last_write_time(core::NativePath(path), error);
  return error ? std::nullopt : std::optional(time);
}

/// The picture of the TGA file, if the run has written it anew.
VtfOutcome OutcomeOf(const tools::VtfExportResult& result, std::optional<fs::file_time_type> before,
                     const images::ImageWorker& worker) {
  VtfOutcome outcome;
  outcome.File = result.TgaPath;
  outcome.WholeLog = WholeText(result.Log, result.Run);
  const auto now = WriteTime(result.TgaPath);
  if (!result.ToolFound || !now || now == before) {
    outcome.Trouble = "No texture was exported";
    return outcome;
  }
  std::string reason;
  outcome.Picture = images::LoadPreview(result.TgaPath, PictureSide, worker, &reason);
  if (!outcome.Picture) outcome.Trouble = "No picture: " + reason;
  return outcome;
}

}  // namespace

void RunVtfJob(const VtfJob& job, platform::JobReport& report, const std::stop_token& stop, VtfEvents& events) {
  std::atomic<bool> stopRequested = false;
  const std::stop_callback onStop(stop, [&] { stopRequested = true; });
  const images::ImageWorker worker;
  const auto mayCreate = OfferToCreateDirectory(report);
  tools::ToolRunOptions options;
  options.Start.WineProgram = job.WineProgram;
  options.Stop = &stopRequested;
  options.AnnounceStart = false;
  options.OnText = [&](std::string_view text) { events.Add({Event::Kind::Text, std::string(text)}); };
  const auto convert = [&](const std::string& tga, const std::string& destination, std::string& log) {
    core::TextReport text(log, report);
    return images::ConvertTgaToImage(tga, destination, {text, worker, mayCreate});
  };
  for (size_t i = 0; i < job.Exports.size() && !stopRequested; ++i) {
    const tools::VtfExport& each = job.Exports[i];
    events.Add({Event::Kind::Started, each.Input, i, job.Exports.size()});
    const auto before = WriteTime(tools::TgaPathOf(each));
    const tools::VtfExportResult result = tools::ExtractVtf(each, convert, options, report);
    events.Add({Event::Kind::Finished, result.Log, i, job.Exports.size(), OutcomeOf(result, before, worker)});
    if (!result.ToolFound) return;
  }
}

std::vector<tools::VtfExport> PlanExports(const std::vector<std::string>& inputs, const std::string& output,
                                          const std::string& sdkDirectory) {
  const std::string_view name = core::LastComponent(output);
  const size_t dot = name.rfind('.');
  std::string ending = dot == std::string_view::npos ? "" : std::string(name.substr(dot + 1));
  const std::string lower = core::LowerAscii(ending);
  if (lower.empty() || lower == "vtf" || lower == "vmt") ending = "tga";
  std::vector<tools::VtfExport> exports;
  for (const std::string& input : inputs) {
    std::string image = tools::SuggestOutputName(input);
    image.replace(image.size() - 3, 3, ending);
    exports.push_back({sdkDirectory, input, image});
  }
  return exports;
}

size_t CountOverwriting(const std::vector<tools::VtfExport>& exports) {
  return static_cast<size_t>(std::count_if(exports.begin(), exports.end(), [](const tools::VtfExport& each) {
    return core::FileExists(each.Output) || core::FileExists(tools::TgaPathOf(each));
  }));
}

std::optional<std::string> MissingDirectoryOf(const std::string& path) {
  const fs::path directory = core::NativePath(path).parent_path();
  std::error_code error;
  if (directory.empty() || fs::exists(directory, error)) return std::nullopt;
  return core::PathText(directory);
}

}  // namespace tarnwick::pages

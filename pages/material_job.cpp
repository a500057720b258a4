#include "pages/material_job.h"

#include <atomic>

#include "core/text_report.h"
#include "images/conversion.h"
#include "pages/create_directory_box.h"
#include "pages/whole_text.h"

namespace tarnwick::pages {

namespace {

using Event = JobEvent<MaterialOutcome>;
using platform::BoxAnswer;

bool HasSucceeded(const tools::MaterialCompile& job, const tools::MaterialResult& result) {
  const tools::ToolRunOutcome& outcome = result.Run.Outcome;
  const bool converted = !result.Maps.Base.empty() &&
                         (!job.HasNormalMap || job.NormalMap.empty() || !result.Maps.Normal.empty()) &&
                         (!job.HasGlowMap || job.GlowMap.empty() || !result.Maps.Glow.empty());
  const bool ended = !outcome.Failure && !outcome.Stopped && (!outcome.End || outcome.End->ExitCode == 0);
  return converted && result.ToolFound && ended;
}

}  // namespace

void RunMaterialJob(const MaterialJob& job, platform::JobReport& report, const std::stop_token& stop,
                    MaterialEvents& events) {
  std::atomic<bool> stopRequested = false;
  const std::stop_callback onStop(stop, [&] { stopRequested = true; });
  const images::ImageWorker worker;
  const auto mayCreate = OfferToCreateDirectory(report);
  std::string pageText;
  tools::PageLog pageLog;
  pageLog.SetTarget(&pageText, [&] { report.Log(std::exchange(pageText, {})); });

  tools::MaterialCompileCalls calls{report, pageLog, {}, {}, {}, {}, {}, {}, {}, {}};
  calls.SdkDirectory = [&] { return job.SdkDirectory; };
  calls.GameDirectory = [&] { return job.GameDirectory; };
  calls.ConvertToTga = [&](const std::string& source, const std::optional<std::string>& alpha,
                           const std::string& directory, std::string& log) {
    core::TextReport text(log, report);
    return images::ConvertMapToTga(source, alpha, directory, {text, worker, mayCreate});
  };
  calls.Run.Start.WineProgram = job.WineProgram;
  calls.Run.Stop = &stopRequested;
  calls.Run.AnnounceStart = false;
  calls.Run.OnText = [&](std::string_view text) { events.Add({Event::Kind::Text, std::string(text)}); };
  calls.Confirm = [&](const std::string& text, const std::string& caption) {
    return report.Ask({text, caption, platform::BoxIcon::Exclamation, platform::BoxButtons::OkCancel}) == BoxAnswer::Ok;
  };
  calls.OnImage = [&](size_t index, size_t count) {
    events.Add({Event::Kind::Started, job.Compile.Images[index], index, count});
  };
  calls.OnToolStart = [&](const std::string& text) { events.Add({Event::Kind::Text, text}); };
  calls.OnResult = [&](const tools::MaterialResult& result) {
    events.Add({Event::Kind::Finished,
                result.Log,
                0,
                0,
                {HasSucceeded(job.Compile, result), WholeText(result.Log, result.Run)}});
  };
  tools::CompileMaterials(job.Compile, calls);
}

}  // namespace tarnwick::pages

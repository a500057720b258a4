#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "images/preview.h"
#include "pages/job_events.h"
#include "platform/job_report.h"
#include "tools/vtf_export.h"

namespace tarnwick::pages {

/// Textures to be exported one after the other.
struct VtfJob {
  std::vector<tools::VtfExport> Exports;
  std::string WineProgram;
};

/// What became of one texture.
struct VtfOutcome {
  std::string File;                             // that the picture shows
  std::optional<images::PreviewImage> Picture;  // of the texture, if it was written
  std::string Trouble;                          // why there is no picture
  std::string WholeLog;                         // with everything that the tool printed
};

using VtfEvents = JobEvents<VtfOutcome>;

/// Exports the textures on the calling thread, with our own image worker. A tool that is missing ends the job: the next
/// texture would miss it too.
void RunVtfJob(const VtfJob& job, platform::JobReport& report, const std::stop_token& stop, VtfEvents& events);

/// Where each of several textures goes: beside itself, in the format that `output`, the name that stands in the output
/// box, asks for, or as a TGA file.
std::vector<tools::VtfExport> PlanExports(const std::vector<std::string>& inputs, const std::string& output,
                                          const std::string& sdkDirectory);

/// How many of the exports find a file where one of theirs goes.
size_t CountOverwriting(const std::vector<tools::VtfExport>& exports);

/// The directory of `path` if it does not exist.
std::optional<std::string> MissingDirectoryOf(const std::string& path);

}  // namespace tarnwick::pages

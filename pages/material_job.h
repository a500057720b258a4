#pragma once

#include <stop_token>

#include "pages/job_events.h"
#include "platform/job_report.h"
#include "tools/material_compile.h"

namespace tarnwick::pages {

/// What a material compile is started with; read from the page and the settings before it starts.
struct MaterialJob {
  tools::MaterialCompile Compile;
  std::string SdkDirectory;
  std::string GameDirectory;
  std::string WineProgram;
};

/// What became of one image.
struct MaterialOutcome {
  bool Succeeded = false;  // converted, and vtex ran and ended without an error
  std::string WholeLog;    // with everything that vtex printed
};

using MaterialEvents = JobEvents<MaterialOutcome>;

/// Converts and compiles the job's images on the calling thread, with our own image worker. `report` gets the page
/// log's lines, the boxes and the questions; `events` what the status window shows.
void RunMaterialJob(const MaterialJob& job, platform::JobReport& report, const std::stop_token& stop,
                    MaterialEvents& events);

}  // namespace tarnwick::pages

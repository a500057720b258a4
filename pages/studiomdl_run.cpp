#include "pages/studiomdl_run.h"

#include "core/settings_table.h"
#include "platform/page_report.h"

namespace tarnwick::pages {

namespace setting = core::setting;

std::optional<jobs::CompileModels> PrepareStudiomdlRun(platform::CDialog& page, const core::AppSettings& settings,
                                                       tools::ToolRun shown, const std::string& qcPath,
                                                       uint32_t options) {
  jobs::CompileModels job{.Inputs = {qcPath},
                          .Switches = options,
                          .SdkDirectory = setting::SdkDirectory.Read(settings),
                          .GameDirectory = setting::GameDirectory.Read(settings),
                          .Start = {setting::WineProgram.Read(settings)},
                          .Shown = shown};
  auto obstacle = jobs::ObstacleOf(job);
  if (!obstacle) return job;
  obstacle->Details = (job.SdkDirectory.empty() ? std::string("No directory of the SDK is set")
                                                : "The SDK's directory is set to " + job.SdkDirectory) +
                      ", and studiomdl, which compiles models, is not there.\nWithout it the rest works: decompiling, "
                      "model projects and their scripts, SMD files, materials and textures.\nThe directory, the folder "
                      "\"bin\" of the SDK, is set with \"Configure\" at the top of the window.";
  platform::PageReport(page.DesktopSeam(), &page).Tell(*obstacle);
  return std::nullopt;
}

}  // namespace tarnwick::pages

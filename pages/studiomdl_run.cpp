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
  const auto obstacle = jobs::ObstacleOf(job);
  if (!obstacle) return job;
  platform::PageReport(page.DesktopSeam(), &page).Tell(*obstacle);
  return std::nullopt;
}

}  // namespace tarnwick::pages

#include "pages/studiomdl_run.h"

#include "core/settings_table.h"
#include "platform/page_report.h"
#include "tools/run_checks.h"
#include "tools/sdk_tools.h"
#include "tools/studiomdl_command.h"

namespace tarnwick::pages {

namespace setting = core::setting;

std::optional<ToolRunJob> PrepareStudiomdlRun(platform::CDialog& page, const core::AppSettings& settings,
                                              tools::ToolRun run, const std::string& qcPath, uint32_t options) {
  const std::string sdkDirectory = setting::SdkDirectory.Read(settings);
  const std::string gameDirectory = setting::GameDirectory.Read(settings);
  platform::PageReport report(page.DesktopSeam(), &page);
  if (!tools::RequireTool(tools::SdkToolPath(sdkDirectory, tools::Studiomdl), tools::Studiomdl, report)) return {};
  return ToolRunJob{run,
                    tools::StudiomdlCommand(sdkDirectory, gameDirectory, qcPath, options),
                    {setting::WineProgram.Read(settings)},
                    tools::CheckStudiomdlRun(gameDirectory, qcPath)};
}

}  // namespace tarnwick::pages

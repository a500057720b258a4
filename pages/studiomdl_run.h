#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "pages/page.h"
#include "pages/tool_runner.h"

namespace tarnwick::pages {

/// The run of studiomdl on `qcPath` with the directories that are set now. Nothing, after a box, if the tool is not
/// there.
std::optional<ToolRunJob> PrepareStudiomdlRun(platform::CDialog& page, const core::AppSettings& settings,
                                              tools::ToolRun run, const std::string& qcPath, uint32_t options);

}  // namespace tarnwick::pages

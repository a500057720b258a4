#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "jobs/compile_models.h"
#include "pages/page.h"

namespace tarnwick::pages {

/// The job that runs studiomdl on `qcPath` with the directories that are set now. Nothing, after a box, if it cannot
/// start.
[[nodiscard]] std::optional<jobs::CompileModels> PrepareStudiomdlRun(platform::CDialog& page,
                                                                     const core::AppSettings& settings,
                                                                     tools::ToolRun shown, const std::string& qcPath,
                                                                     uint32_t options);

}  // namespace tarnwick::pages

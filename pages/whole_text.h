#pragma once

#include <string>

#include "tools/tool_run.h"

namespace tarnwick::pages {

/// `log`, which holds the text that is shown of `run`, with everything that the tool printed in that text's place.
std::string WholeText(std::string log, const tools::FinishedRun& run);

}  // namespace tarnwick::pages

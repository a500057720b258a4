#pragma once

#include <string>
#include <string_view>

#include "jobs/item_run.h"

namespace tarnwick::jobs {

/// Tells what the program itself has found about the run of a tool: as a warning of the item, and as the line
/// "Warning: ..." of its log, which is given back. `warning` may begin with that word itself.
std::string TellLoggedWarning(ItemRun& run, std::string_view warning);

}  // namespace tarnwick::jobs

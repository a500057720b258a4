#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `smd`: the figures of SMD files, and the renaming of a material in one.
void AddSmdVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

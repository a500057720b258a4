#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `archive`: what VPK archives and GMA addons hold, and taking files out of them.
void AddArchiveVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

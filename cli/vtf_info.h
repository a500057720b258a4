#pragma once

#include <string>
#include <vector>

#include "cli/invocation.h"

namespace tarnwick::cli {

/// Prints the facts of each texture, as lines or with `json` as one JSON object a line. The exit code.
int PrintVtfInfo(const std::vector<std::string>& files, bool json, Invocation& invocation);

}  // namespace tarnwick::cli

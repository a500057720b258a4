#pragma once

#include <string>
#include <vector>

#include "cli/invocation.h"
#include "jobs/input_content.h"

namespace tarnwick::cli {

/// Prints the facts of each texture, as lines or with `json` as one JSON object a line. The exit code.
int PrintVtfInfo(const std::vector<std::string>& files, bool json, jobs::InputContent& content, Invocation& invocation);

}  // namespace tarnwick::cli

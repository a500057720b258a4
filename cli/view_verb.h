#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `view`: a compiled model in the SDK's model viewer.
void AddViewVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

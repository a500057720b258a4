#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `project`: model projects shown, read and changed value by value.
void AddProjectVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

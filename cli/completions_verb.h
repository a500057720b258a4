#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// The verb `completions`: prints the completion script of a shell.
void AddCompletionsVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `config`: shows and changes the settings that the window works with.
void AddConfigVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

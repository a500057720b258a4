#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `verify`: compiled models to sources and back, and what has changed.
void AddVerifyVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

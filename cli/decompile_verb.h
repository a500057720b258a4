#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `decompile`: compiled models to sources, one or many.
void AddDecompileVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

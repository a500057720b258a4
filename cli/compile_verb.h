#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `compile`: model projects and QC scripts through studiomdl.
void AddCompileVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

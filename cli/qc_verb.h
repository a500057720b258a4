#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `qc`: the QC scripts of model projects.
void AddQcVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `picture`: compiled models to pictures.
void AddPictureVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `material`: images to textures with their materials, in a game directory.
void AddMaterialVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

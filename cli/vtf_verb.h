#pragma once

#include "cli/invocation.h"

namespace tarnwick::cli {

/// `vtf`: textures to images, one or many; `vtf info`: what textures hold.
void AddVtfVerb(CLI::App& program, Invocation& invocation);

}  // namespace tarnwick::cli

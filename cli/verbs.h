#pragma once

#include <span>

#include "cli/invocation.h"

namespace tarnwick::cli {

/// All verbs, in the order in which the help lists them.
extern const std::span<const AddVerb> Verbs;

}  // namespace tarnwick::cli

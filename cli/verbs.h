#pragma once

#include <span>
#include <string_view>

#include "cli/invocation.h"

namespace tarnwick::cli {

/// A verb by the name that `Add` gives it.
struct Verb {
  std::string_view Name;
  AddVerb Add;
};

/// All verbs, in the order in which the help lists them.
extern const std::span<const Verb> Verbs;

}  // namespace tarnwick::cli

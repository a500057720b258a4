#pragma once

#include <cstddef>
#include <functional>

#include "compiler/compile_options.h"

namespace tarnwick::compiler {

/// Runs `task` once for each number below `count`, on as many threads as the options allow, this one among them. Tasks
/// write to places of their own; in which order they run does not show. Those that have not begun when a stop is asked
/// for are left out.
void ForEachInParallel(const CompileOptions& options, size_t count, const std::function<void(size_t)>& task);

}  // namespace tarnwick::compiler

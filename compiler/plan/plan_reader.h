#pragma once

#include <memory>

#include "compiler/plan/compile_plan.h"

namespace tarnwick::compiler {

/// What a script asks for. What is wrong with its values is added to the script's messages; a statement that is known
/// and not built is told as a warning.
std::unique_ptr<CompilePlan> ReadPlan(qc::Script script);

}  // namespace tarnwick::compiler

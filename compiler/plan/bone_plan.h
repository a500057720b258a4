#pragma once

#include "compiler/plan/compile_plan.h"

namespace tarnwick::compiler {

/// Puts a statement of bones and of what hangs on them (attachments, hit boxes, procedural bones, pose parameters, ik
/// chains) into the plan. False for any other statement.
bool ReadBoneStatement(const qc::Statement& statement, CompilePlan& plan);

}  // namespace tarnwick::compiler

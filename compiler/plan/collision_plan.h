#pragma once

#include "compiler/plan/compile_plan.h"

namespace tarnwick::compiler {

/// The collision model of a $collisionmodel or $collisionjoints.
PlanCollision ReadCollision(const qc::Statement& statement, const SourceUse& use);

}  // namespace tarnwick::compiler

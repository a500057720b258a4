#pragma once

#include "compiler/plan/compile_plan.h"

namespace tarnwick::compiler {

/// The body part of a $body, $model or $bodygroup; `use` is what holds for its sources.
PlanBodyPart ReadBodyPart(const qc::Statement& statement, const SourceUse& use);
/// The level of detail of a $lod or $shadowlod.
PlanLod ReadLod(const qc::Statement& statement, const SourceUse& use);
/// `use` with the source that `argument` names.
SourceUse UseOf(const qc::Argument& argument, const SourceUse& use);

}  // namespace tarnwick::compiler

#pragma once

#include <optional>

#include "compiler/plan/compile_plan.h"
#include "model/rigid_transform.h"

namespace tarnwick::compiler {

/// How $upaxis and $origin place a source, behind its scale: what stands upright on Y is turned, then turned about Z
/// and moved. Nothing where the source stays as it is.
[[nodiscard]] std::optional<model::RigidTransform> PlacementOf(const SourceUse& use);

}  // namespace tarnwick::compiler

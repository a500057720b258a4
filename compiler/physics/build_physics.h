#pragma once

#include <optional>

#include "compiler/compile_context.h"
#include "compiler/physics/built_physics.h"
#include "compiler/skeleton/model_bones.h"
#include "model/rigid_transform.h"

namespace tarnwick::compiler {

/// Makes the collision model that the plan asks for: its convex pieces, their surfaces, joints and text. `rootPose` is
/// where the first frame of the first sequence, as the model holds it, puts the root bone; a compile that keeps values
/// places a $collisionmodel by it, any other by the quarter turn that an animation's root is given. What is wrong is
/// told; false if there is no collision model to be made.
bool BuildPhysics(CompileContext& context, const ModelBones& bones, BuiltPhysics& physics,
                  const std::optional<model::RigidTransform>& rootPose = std::nullopt);

}  // namespace tarnwick::compiler

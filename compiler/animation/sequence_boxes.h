#pragma once

#include <array>
#include <optional>

#include "compiler/animation/built_motion.h"
#include "compiler/compile_context.h"
#include "compiler/mesh/built_meshes.h"
#include "compiler/skeleton/built_skeleton.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// Measures the box of every sequence: the vertices, the bones' places and the hit boxes' corners over all frames of
/// all its animations. The first one's also takes in `collision`, with a margin. Gives the middle of the first one's
/// box before that. $bboxonlyverts leaves all but the vertices out.
model::Vec3 MeasureSequences(const CompileContext& context, const ModelBones& bones, const BuiltMeshes& meshes,
                             const BuiltSkeleton& skeleton, const std::optional<std::array<model::Vec3, 2>>& collision,
                             BuiltMotion& motion);

}  // namespace tarnwick::compiler

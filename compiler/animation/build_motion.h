#pragma once

#include "compiler/animation/built_motion.h"
#include "compiler/compile_context.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// Makes all animations and sequences; boxes are for MeasureSequences. What is wrong is told; false if nothing sensible
/// can follow.
bool BuildMotion(CompileContext& context, const ModelBones& bones, BuiltMotion& motion);

}  // namespace tarnwick::compiler

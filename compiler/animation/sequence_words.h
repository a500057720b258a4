#pragma once

#include <vector>

#include "compiler/animation/built_motion.h"
#include "compiler/compile_context.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// Applies the words of a sequence whose animations are known; all sequences are there, so that layers find theirs.
/// `named`: its animations were declared on their own, and words of animations do not reach them.
void ApplySequenceWords(CompileContext& context, const ModelBones& bones, const std::vector<const qc::Option*>& words,
                        BuiltMotion& motion, size_t number, bool named);

/// Which node a sequence leads to from which.
void BuildNodeTable(CompileContext& context, BuiltMotion& motion);

}  // namespace tarnwick::compiler

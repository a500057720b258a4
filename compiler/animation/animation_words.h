#pragma once

#include <functional>
#include <string_view>

#include "compiler/animation/built_motion.h"
#include "compiler/compile_context.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// Finds an animation that was made before by its name, or by that of the sequence that made it; nothing if there is
/// none. Pointers hold until the next animation is made.
using FindAnimation = std::function<BuiltAnimation*(std::string_view name)>;

/// The frames of a source as poses of the model's bones: in the bones' parents' space, scaled, roots turned by a
/// quarter about Z. A bone that the source has not stands at rest. `use` tells the source; a static model has the one
/// frame.
bool TakeFrames(CompileContext& context, const ModelBones& bones, const SourceUse& use, BuiltAnimation& animation);

/// The rest pose in one frame.
void TakeRestPose(const ModelBones& bones, BuiltAnimation& animation);

/// Applies a word of an animation; false if it is none. `before` is the animation as it stood before its words, which a
/// subtraction from itself is taken from.
bool ApplyAnimationWord(CompileContext& context, const ModelBones& bones, const qc::Option& word,
                        BuiltAnimation& animation, std::string_view ownName, const FindAnimation& find);

/// What words leave for the end: loops closed, travel taken out, rules of inverse kinematics.
void FinishAnimation(CompileContext& context, const ModelBones& bones, const std::vector<const qc::Option*>& words,
                     BuiltAnimation& animation);

}  // namespace tarnwick::compiler

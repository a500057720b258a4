#pragma once

#include "compiler/compile_context.h"
#include "compiler/mesh/built_meshes.h"
#include "compiler/skeleton/built_skeleton.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// Makes attachments, hit boxes (from the vertices where the script has none), ik chains and procedural bones, and
/// marks the bones that they use.
void BuildSkeleton(CompileContext& context, ModelBones& bones, const BuiltMeshes& meshes, BuiltSkeleton& skeleton);

/// The bones that $jigglebone and VRD files move; told apart since they read files and words of their own.
void BuildProceduralBones(CompileContext& context, ModelBones& bones, BuiltSkeleton& skeleton);

}  // namespace tarnwick::compiler

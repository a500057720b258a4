#pragma once

#include "compiler/compile_context.h"
#include "compiler/mesh/built_meshes.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// Makes the meshes of all body parts: vertices, triangles at every level of detail, textures and skins. Marks in
/// `bones` the bones that vertices follow at each level. No flex moves anything yet: BuildFace parts the strip groups
/// that one does. What is wrong is told; false if nothing sensible can follow.
bool BuildMeshes(CompileContext& context, ModelBones& bones, BuiltMeshes& meshes);

}  // namespace tarnwick::compiler

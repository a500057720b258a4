#pragma once

#include "compiler/compile_context.h"
#include "compiler/face/built_face.h"
#include "compiler/mesh/built_meshes.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// Makes the faces of all models: flexes from shape files, controllers and rules, eyes with their lids, mouths. In
/// `meshes` the eyes' meshes are named, and the triangles that flexes move are put into strip groups of their own. What
/// is wrong is told; false if nothing sensible can follow.
bool BuildFace(CompileContext& context, const ModelBones& bones, BuiltMeshes& meshes, BuiltFace& face);

}  // namespace tarnwick::compiler

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "compiler/animation/built_motion.h"
#include "compiler/compile_context.h"
#include "compiler/face/built_face.h"
#include "compiler/mesh/built_meshes.h"
#include "compiler/physics/built_physics.h"
#include "compiler/skeleton/built_skeleton.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// All that the stages have made of a model.
struct ModelParts {
  ModelBones Bones;
  BuiltSkeleton Skeleton;
  BuiltMotion Motion;
  BuiltMeshes Meshes;
  BuiltFace Face;
  std::optional<BuiltPhysics> Physics;
  model::Vec3 MiddleOfFirstBox = {0, 0, 0};
};

/// The bytes of the .mdl file and of its animation block file, empty for none, their checksums 0.
struct MdlFiles {
  std::string Mdl, Ani;
};
/// Nothing, told, if the format cannot hold what there is.
std::optional<MdlFiles> WriteMdl(CompileContext& context, const ModelParts& parts);
/// The bytes of the .vvd and the .vtx file, their checksums 0. Empty for a model without body parts.
std::string WriteVvd(const BuiltMeshes& meshes);
std::string WriteVtx(const BuiltMeshes& meshes);

}  // namespace tarnwick::compiler

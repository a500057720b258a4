#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "compiler/compile_context.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// A rigid body as the text tells of it.
struct TextBody {
  int32_t Bone = 0;
  int32_t Parent = -1;  // another body
  float Volume = 0;     // cubic inches
};

/// The name of a body: its bone, or the collision mesh where there is one body for all.
std::string NameOfBody(const PlanCollision& plan, const ModelBones& bones, int32_t bone);

/// The text of a collision model: masses, joints, rules, and what $collisiontext adds. `targets` tells of each bone the
/// bone whose body has its triangles. What names no body is told.
std::string MakePhysicsText(CompileContext& context, const ModelBones& bones, const std::vector<TextBody>& bodies,
                            const std::vector<int32_t>& targets);

}  // namespace tarnwick::compiler

#pragma once

#include <array>
#include <cstdint>

#include "compiler/mesh/corner_weights.h"
#include "model/bone_math_types.h"

namespace tarnwick::compiler {

/// A vertex while meshes are put together: a corner of a source in the model's space, v counted downwards.
struct MeshVertex {
  model::Vec3 Position = {0, 0, 0};
  model::Vec3 Normal = {0, 0, 0};
  float U = 0, V = 0;
  CornerWeights Weights = {};
};

/// The corners of a triangle as vertices of its mesh, wound as the model winds them.
using MeshTriangle = std::array<uint32_t, 3>;

}  // namespace tarnwick::compiler

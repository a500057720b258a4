#pragma once

#include <array>
#include <span>
#include <vector>

#include "compiler/mesh/mesh_vertex.h"

namespace tarnwick::compiler {

/// The tangent of each vertex of a mesh: the direction in which u grows, along the surface, and the side (-1 or 1) on
/// which v grows. Zeros with 1 where the triangles have no area in the texture.
std::vector<std::array<float, 4>> TangentsOf(std::span<const MeshVertex> vertices,
                                             std::span<const MeshTriangle> triangles);

}  // namespace tarnwick::compiler

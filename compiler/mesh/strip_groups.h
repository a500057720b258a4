#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "compiler/mesh/built_meshes.h"
#include "compiler/mesh/mesh_vertex.h"

namespace tarnwick::compiler {

/// Most bones of the vertices of one strip: what the hardware keeps at hand.
inline constexpr size_t MostStripBones = 53;
/// Most vertices of a mesh, and of a strip group: their numbers have 16 bits.
inline constexpr size_t MostMeshVertices = 65536;

inline constexpr uint8_t StripGroupFlexed = 0x1;
inline constexpr uint8_t StripGroupHardware = 0x2;
inline constexpr uint8_t StripGroupDeltaFlexed = 0x4;

/// How the triangles of a mesh become strip groups.
struct StripGroupForm {
  bool Static = false;  // one bone for all: vertices name none
  /// A vertex of the mesh: whether a flex moves it. Empty: none is.
  std::span<const uint8_t> Moved = {};
};

/// Puts the triangles of a mesh at one level of detail into strip groups, in their order: those with a vertex that is
/// moved into a group of their own, ahead of the others. A group's vertices stand in the order in which its triangles
/// first name them; where they follow more bones than the hardware keeps, the group has a strip for each run of
/// triangles that it can draw. `vertices` are those of the mesh, at most MostMeshVertices.
std::vector<BuiltStripGroup> MakeStripGroups(std::span<const model::VvdVertex> vertices,
                                             std::span<const MeshTriangle> triangles, const StripGroupForm& form);

/// The triangles of strip groups, in their order.
std::vector<MeshTriangle> TrianglesOf(const std::vector<BuiltStripGroup>& groups);

}  // namespace tarnwick::compiler

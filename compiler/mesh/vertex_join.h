#pragma once

#include <cstdint>
#include <vector>

#include "compiler/mesh/mesh_vertex.h"

namespace tarnwick::compiler {

/// When two corners of a mesh are one vertex: place, texture coordinates and weights are equal, and the normals lie
/// less than `NormalAngle` degrees apart. With an angle of 0 every value has to be the same, the sign of a zero too.
struct JoinRule {
  float NormalAngle = 2;
};

/// Joins the corners of a mesh into vertices, in the order of their first use; the first corner gives the normal. Takes
/// the same time for each corner, however many lie in one place.
class VertexJoiner {
 public:
  explicit VertexJoiner(const JoinRule& rule);

  /// The number of the vertex that stands for `corner`.
  uint32_t Add(const MeshVertex& corner);
  /// The nearest vertex of the first `count` that has the texture coordinates and weights of `corner`, lies within
  /// `reach` of it and does not look the other way; none: -1.
  int64_t FindNear(const MeshVertex& corner, uint32_t count, double reach);

  std::vector<MeshVertex> Vertices;

 private:
  void Grow();

  float m_angle;
  double m_leastCosine;
  std::vector<uint32_t> m_table;  // vertex + 1 by hash, the first of its place
  std::vector<uint32_t> m_next;   // of a vertex: vertex + 1 of the next at its place
  std::vector<uint64_t> m_hashes;
  size_t m_heads = 0;
  std::vector<uint32_t> m_near;  // vertices sorted by their texture coordinates
  size_t m_nearCount = 0;
};

}  // namespace tarnwick::compiler

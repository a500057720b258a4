#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "model/bone_math_types.h"

namespace tarnwick::compiler {

/// A vertex of a shape file at rest, in the model's space.
struct ShapePoint {
  model::Vec3 Position = {0, 0, 0};
  model::Vec3 Normal = {0, 0, 0};
};

/// Finds the vertices of a shape file that stand for the vertices of a model: those at the same place, or within a
/// hundredth of a unit of it, and of those the one whose normal is nearest. A shape file may number each vertex of the
/// model, each corner of the source, or each place once: vertices that are alike in it are given out one by one, in the
/// order in which they are asked for, and the last of them as often as need be.
class ShapeMatch {
 public:
  /// `points` in the order of their numbers; they stay alive.
  explicit ShapeMatch(const std::vector<ShapePoint>& points);

  /// The place among the points of the one that stands for a vertex; -1 for none.
  int32_t Find(const model::Vec3& position, const model::Vec3& normal);
  /// Points at whose place no point stands for any vertex. One that was not needed beside its like is none.
  int64_t CountLonely() const;

 private:
  int32_t Take(size_t first, size_t last);
  int32_t FindAround(const model::Vec3& position, const model::Vec3& normal) const;

  const std::vector<ShapePoint>& m_points;
  std::vector<uint32_t> m_sorted;  // by place, normal, number
  std::vector<uint32_t> m_cells;   // by the cell of their place, for those that lie near
  std::vector<uint32_t> m_given;   // of the first of alike points: how many were given out
  std::vector<uint8_t> m_used;
};

}  // namespace tarnwick::compiler

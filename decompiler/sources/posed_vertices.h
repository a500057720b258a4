#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "core/vector_code.h"
#include "model/bone_math_types.h"
#include "model/rigid_transform.h"
#include "model/vvd_records.h"

namespace tarnwick::decompiler::sources {

/// A box along the axes of the model's space.
struct BoxOfPoints {
  model::Vec3 Least = {}, Most = {};
};

/// Where a pose brings the vertices of one bone: its transform by columns, a place without meaning at each end, so that
/// the three numbers of a point are formed side by side.
struct BonePlacement {
  using Column = std::array<double, 4>;

  Column Turn[3] = {};
  Column Move = {};
  bool Moved = false;  // whether it is not where the pose before brought them

  [[nodiscard]] static BonePlacement Of(const model::RigidTransform& transform, bool moved);
};

/// Whether the vertex stands elsewhere than in the pose before.
[[nodiscard]] bool HasMoved(const model::VvdVertex& vertex, std::span<const BonePlacement> bones);

/// Grows `box` to hold the vertices where `bones` bring them, each by its weights; a weight of a bone that is not among
/// them counts for nothing. Each level of vector code, which is at most that of the processor, gives the same to the
/// last bit.
void TakePosedVertices(std::span<const model::VvdVertex> vertices, std::span<const BonePlacement> bones,
                       BoxOfPoints& box, core::VectorLevel level = core::HighestVectorLevel());

}  // namespace tarnwick::decompiler::sources

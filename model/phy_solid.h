#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "model/bone_math_types.h"

namespace tarnwick::model {

/// The corners of a triangle as numbers of points. Seen from outside they run counterclockwise: (b - a) x (c - a)
/// points outward.
using PhyCorners = std::array<uint16_t, 3>;

/// A convex piece of a solid: a closed mesh over the solid's points.
struct PhyPiece {
  int32_t BoneNumber = 0;  // bone + 1 in a joined model, 0 in a single one
  std::vector<PhyCorners> Triangles = {};
};

/// One rigid body. Points are metres in the axes of .phy files.
struct PhySolid {
  std::vector<Vec3> Points;
  std::vector<PhyPiece> Pieces;
  /// As a file has it; nothing of a solid that was not read, whose mass centre follows from its pieces.
  std::optional<Vec3> MassCentre = {};
};

/// The farthest that a point of a solid may lie from the origin along an axis, in metres: several times a map's size.
inline constexpr float FarthestPhyCoordinate = 4096;

/// A model's unit, an inch.
inline constexpr double MetresPerInch = 0.0254;

/// A point of a .phy file in inches and the axes of the model: (x, z, -y).
inline Vec3 PhyToModel(const Vec3& p) {
  return {static_cast<float>(double{p.x} / MetresPerInch), static_cast<float>(double{p.z} / MetresPerInch),
          static_cast<float>(-double{p.y} / MetresPerInch)};
}

/// The inverse.
inline Vec3 ModelToPhy(const Vec3& p) {
  return {static_cast<float>(double{p.x} * MetresPerInch), static_cast<float>(-double{p.z} * MetresPerInch),
          static_cast<float>(double{p.y} * MetresPerInch)};
}

}  // namespace tarnwick::model

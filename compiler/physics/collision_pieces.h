#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "model/phy_solid.h"

namespace tarnwick::compiler {

/// A corner of a collision mesh, in units.
struct CollisionCorner {
  model::Vec3 Position = {0, 0, 0};
  model::Vec3 Normal = {0, 0, 0};
};

/// A convex piece: its points, and triangles over them that run counterclockwise seen from outside.
struct CollisionPiece {
  std::vector<model::Vec3> Points;
  std::vector<model::PhyCorners> Triangles;
};

/// How the triangles of a body become convex pieces.
struct PieceRule {
  bool Split = false;       // sets of triangles that hang together are pieces; else there is one round all
  float NormalAngle = 2;    // corners of one place hang together below this many degrees between their normals
  bool KeepClosed = false;  // a closed set is taken as it stands, without a hull round it
};

/// The sets of triangles that are joined by corners of equal place and normal, in the order of their first triangles.
/// `corners` are three a triangle.
std::vector<std::vector<CollisionCorner>> ConnectedSets(std::span<const CollisionCorner> corners, float normalAngle);

/// The pieces of a body. A flat set gives none; where all are flat, there is one round all points, or none if those are
/// flat too.
std::vector<CollisionPiece> PiecesOf(std::span<const CollisionCorner> corners, const PieceRule& rule);

/// A solid of `pieces`; with several, `hull` becomes the hull round all. Points are turned into the file's axes and
/// metres.
model::PhySolid SolidOf(const std::vector<CollisionPiece>& pieces, int32_t boneNumber,
                        std::vector<model::PhyCorners>& hull);

}  // namespace tarnwick::compiler

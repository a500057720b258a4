#pragma once

#include <array>

#include "model/phy_solid.h"

namespace tarnwick::model {

using PhyVector = std::array<double, 3>;

/// What follows from the pieces of a solid, in the file's units and axes but for the last two. Each piece counts, a
/// copy of another too, all at equal density.
struct PhyMeasures {
  PhyVector MassCentre{};
  PhyVector Inertia{};     // per mass, m^2
  double Radius = 0;       // from the mass centre to the farthest point
  uint8_t Deviation = 0;   // of the triangles' planes from the mass centre, in 250ths of the radius, rounded up
  double CubicInches = 0;  // volume of the pieces; 0 for a flat solid
  PhyVector AreaShares{};  // of the box's sides in the model's axes, 0 to 1
};

/// Measures `solid`, whose pieces are convex and whose triangles name points that it has. Inertia round an axis is the
/// root of the squares of the two other axes' second moments, as the format wants it. A solid without volume has its
/// mass centre in the middle of its points and half the radius's square as inertia.
/// Where `massCentre` is given, in the file's units and axes, it is the mass centre.
PhyMeasures MeasurePhySolid(const PhySolid& solid, const PhyVector* massCentre = nullptr);

/// The mass centre that follows from the pieces of such a solid, and the distance from it to the farthest point.
struct PhyCentre {
  PhyVector Place{};
  double Radius = 0;
};
PhyCentre CentreOfPieces(const PhySolid& solid);

/// The unit normal of a triangle in the file's axes; zeros for one without area.
PhyVector PhyNormal(const PhySolid& solid, const PhyCorners& corners);

}  // namespace tarnwick::model

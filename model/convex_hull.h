#pragma once

#include <optional>
#include <span>
#include <vector>

#include "model/phy_solid.h"

namespace tarnwick::model {

/// The convex hull round `points`, at most MostPhyPoints of them, as a closed mesh: each corner is one of the points
/// (the first of equal ones), triangles seen from outside run counterclockwise, and points inside, on a side or on an
/// edge are left out. "On" and "inside" allow for what rounding a coordinate to a float or to six decimals can move a
/// point: a box whose faces are divided comes out as 12 triangles, turned or not. The same points give the same mesh.
///
/// Nothing for points that lie in a plane, on a line or in one place within that bound, or that are not finite.
[[nodiscard]] std::optional<std::vector<PhyCorners>> ConvexHull(std::span<const Vec3> points);

}  // namespace tarnwick::model

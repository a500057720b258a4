#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "view/scene/scene.h"
#include "view/scene/scene_pose.h"
#include "view/scene/view_state.h"

namespace tarnwick::view {

/// A point of what is drawn in a plain colour (red, green, blue, alpha).
struct OverlayPoint {
  Vec3 Position;
  std::array<uint8_t, 4> Colour{};
};
static_assert(sizeof(OverlayPoint) == 16);

/// What is drawn beside the mesh, as plain data: two points a line, three a triangle.
struct Overlay {
  // In the scene, behind what hides them
  std::vector<OverlayPoint> Lines;
  // On top of everything, in this order
  std::vector<OverlayPoint> TopTriangles;
  std::vector<OverlayPoint> TopLines;
  std::vector<OverlayPoint> TopDots;
};

/// The edges of a hull between sides that do not lie in one plane, as pairs of its points.
std::vector<uint32_t> HullEdges(const SceneHull& hull);

/// What a scene keeps ready for its overlays.
struct OverlayParts {
  std::vector<std::vector<uint32_t>> HullEdges;  // of each hull
};
OverlayParts PrepareOverlay(const Scene& scene);

/// What the extras of `state` show in a pose. `points` are the vertices that normals are drawn at (the scene's own, or
/// those moved by its face), `lod` the level that is shown. On a dark background lines are light.
Overlay MakeOverlay(const Scene& scene, const OverlayParts& parts, const ViewState& state, const ScenePose& pose,
                    std::span<const ScenePoint> points, int32_t lod, bool onDark);

}  // namespace tarnwick::view

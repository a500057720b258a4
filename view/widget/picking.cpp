#include "view/widget/picking.h"

#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace tarnwick::view {

namespace {

struct Ray {
  Vec3 Start;
  Vec3 Direction;
};

Ray RayOf(const Camera& camera, float width, float height, float x, float y) {
  const float slope = std::tan(camera.FieldOfView * std::numbers::pi_v<float> / 360);
  const float right = (2 * x / width - 1) * slope * width / height;
  const float up = (1 - 2 * y / height) * slope;
  const Vec3 aside = camera.Right() * right + camera.Up() * up;
  if (camera.IsOrthographic) return {camera.Eye() + aside * camera.Distance, camera.Forward()};
  return {camera.Eye(), camera.Forward() + aside};
}

/// How many directions `ray` goes to the triangle; infinity if it passes by.
float DistanceTo(const Ray& ray, const std::array<Vec3, 3>& corner) {
  constexpr float Never = std::numeric_limits<float>::infinity();
  // By Moller and Trumbore, "Fast, minimum storage ray/triangle intersection".
  const Vec3 first = corner[1] - corner[0];
  const Vec3 second = corner[2] - corner[0];
  const Vec3 across = Cross(ray.Direction, second);
  const float determinant = Dot(first, across);
  if (determinant == 0 || !std::isfinite(determinant)) return Never;
  const Vec3 from = ray.Start - corner[0];
  const float u = Dot(from, across) / determinant;
  const Vec3 other = Cross(from, first);
  const float v = Dot(ray.Direction, other) / determinant;
  if (!(u >= 0 && v >= 0 && u + v <= 1)) return Never;
  const float distance = Dot(second, other) / determinant;
  return distance > 0 ? distance : Never;
}

}  // namespace

std::optional<PickedTriangle> PickTriangle(const Scene& scene, const ViewState& state, const ScenePose& pose,
                                           float width, float height, float x, float y) {
  if (!(width > 0 && height > 0)) return std::nullopt;
  const Ray ray = RayOf(state.Eye, width, height, x, y);
  const int32_t lod = ShownLod(scene, state, height);
  const std::span<const Matrix34> skin = pose.SkinMatrices();
  std::vector<Vec3> places(scene.Points.size());
  std::vector<bool> isPlaced(scene.Points.size());
  const auto placeOf = [&](uint32_t index) {
    if (!isPlaced[index]) {
      places[index] = SkinPoint(scene.Points[index], scene.Vertices[index], skin).Position;
      isPlaced[index] = true;
    }
    return places[index];
  };
  std::optional<PickedTriangle> picked;
  float nearest = std::numeric_limits<float>::infinity();
  for (size_t draw = 0; draw < scene.Draws.size(); ++draw) {
    const SceneDraw& each = scene.Draws[draw];
    if (!scene.IsDrawn(each, state.BodyGroups, lod)) continue;
    for (int64_t i = 0; i + 2 < each.IndexCount; i += 3) {
      const uint32_t* index = &scene.Indices[static_cast<size_t>(each.FirstIndex + i)];
      const float distance = DistanceTo(ray, {placeOf(index[0]), placeOf(index[1]), placeOf(index[2])});
      if (!(distance < nearest)) continue;
      nearest = distance;
      picked = {static_cast<int32_t>(draw), i / 3, scene.MaterialOf(each, state.Skin),
                ray.Start + ray.Direction * distance};
    }
  }
  return picked;
}

}  // namespace tarnwick::view

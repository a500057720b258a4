#include "view/scene/complete_scene.h"

#include <algorithm>
#include <cmath>

#include "view/scene/scene_pose.h"
#include "view/scene/sequence_place.h"

namespace tarnwick::view {

namespace {

/// Tangents of vertices that have none, from the triangles that they stand in: along rising U, square to the normal.
void FillTangents(Scene& scene) {
  const auto isMissing = [](const SceneVertex& v) {
    return v.Tangent[0] == 0 && v.Tangent[1] == 0 && v.Tangent[2] == 0;
  };
  if (std::none_of(scene.Vertices.begin(), scene.Vertices.end(), isMissing)) return;
  std::vector<Vec3> along(scene.Vertices.size());
  std::vector<Vec3> across(scene.Vertices.size());
  for (size_t i = 0; i + 2 < scene.Indices.size(); i += 3) {
    const std::array<size_t, 3> corner = {scene.Indices[i], scene.Indices[i + 1], scene.Indices[i + 2]};
    const Vec3 e1 = scene.Points[corner[1]].Position - scene.Points[corner[0]].Position;
    const Vec3 e2 = scene.Points[corner[2]].Position - scene.Points[corner[0]].Position;
    const float s1 = scene.Vertices[corner[1]].U - scene.Vertices[corner[0]].U;
    const float s2 = scene.Vertices[corner[2]].U - scene.Vertices[corner[0]].U;
    const float t1 = scene.Vertices[corner[1]].V - scene.Vertices[corner[0]].V;
    const float t2 = scene.Vertices[corner[2]].V - scene.Vertices[corner[0]].V;
    const float area = s1 * t2 - s2 * t1;
    if (area == 0) continue;
    const Vec3 s = Unit((e1 * t2 - e2 * t1) * (1 / area));
    const Vec3 t = Unit((e2 * s1 - e1 * s2) * (1 / area));
    if (!std::isfinite(Dot(s, s)) || !std::isfinite(Dot(t, t))) continue;
    for (const size_t v : corner) {
      along[v] = along[v] + s;
      across[v] = across[v] + t;
    }
  }
  for (size_t v = 0; v < scene.Vertices.size(); ++v) {
    if (!isMissing(scene.Vertices[v])) continue;
    const Vec3 normal = scene.Points[v].Normal;
    const Vec3 tangent = Unit(along[v] - normal * Dot(normal, along[v]));
    if (!std::isfinite(Dot(tangent, tangent))) continue;
    const float side = Dot(Cross(normal, along[v]), across[v]) < 0 ? -1.0f : 1.0f;
    scene.Vertices[v].Tangent = {tangent.X, tangent.Y, tangent.Z, side};
  }
}

}  // namespace

void CompleteScene(Scene& scene) {
  if (scene.Lods.empty()) scene.Lods.emplace_back();
  scene.Lods.front().Distance = 0;
  if (scene.Skins.empty()) {
    scene.Skins.emplace_back();
    for (size_t i = 0; i < scene.Materials.size(); ++i) scene.Skins.front().push_back(static_cast<int32_t>(i));
  }
  FillTangents(scene);
  for (size_t i = 0; i < scene.Sequences.size(); ++i) {
    const SequenceTiming timing = TimingOf(scene, static_cast<int32_t>(i), {});
    scene.Sequences[i].Fps = timing.Fps;
    scene.Sequences[i].FrameCount = static_cast<int32_t>(std::lround(timing.LastFrame)) + 1;
  }
  scene.MeshBox = PosedBox(scene, ScenePose(scene).SkinMatrices(), {}, 0);
}

}  // namespace tarnwick::view

#include "view/scene/scene.h"

#include <algorithm>
#include <cmath>

#include "core/paths.h"
#include "model/animation_records.h"
#include "view/scene/scene_pose.h"

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

bool SceneSequence::IsLooping() const {
  return (Flags & model::SequenceFlagLooping) != 0;
}
bool SceneSequence::IsDelta() const {
  return (Flags & model::SequenceFlagDelta) != 0;
}
bool SceneSequence::IsAutoplay() const {
  return (Flags & model::SequenceFlagAutoplay) != 0;
}
bool SceneSequence::IsHidden() const {
  return (Flags & model::SequenceFlagHidden) != 0;
}

void Scene::Complete() {
  if (Lods.empty()) Lods.emplace_back();
  Lods.front().Distance = 0;
  if (Skins.empty()) {
    Skins.emplace_back();
    for (size_t i = 0; i < Materials.size(); ++i) Skins.front().push_back(static_cast<int32_t>(i));
  }
  FillTangents(*this);
  for (size_t i = 0; i < Sequences.size(); ++i) {
    const SequenceTiming timing = TimingOf(*this, static_cast<int32_t>(i), {});
    Sequences[i].Fps = timing.Fps;
    Sequences[i].FrameCount = static_cast<int32_t>(std::lround(timing.LastFrame)) + 1;
  }
  MeshBox = PosedBox(*this, ScenePose(*this).SkinMatrices(), {}, 0);
}

int32_t Scene::MaterialOf(const SceneDraw& draw, int32_t skin) const {
  const size_t row = skin >= 0 && static_cast<size_t>(skin) < Skins.size() ? static_cast<size_t>(skin) : 0;
  if (draw.Material < 0) return -1;
  const auto slot = static_cast<size_t>(draw.Material);
  if (row < Skins.size() && slot < Skins[row].size()) return Skins[row][slot];
  return slot < Materials.size() ? draw.Material : -1;
}

int32_t Scene::LodAt(float unitPixels) const {
  int32_t shown = 0;
  if (!(unitPixels > 0)) return shown;
  for (size_t i = 1; i < Lods.size(); ++i) {
    if (!Lods[i].IsShadow && Lods[i].Distance <= 100 / unitPixels) shown = static_cast<int32_t>(i);
  }
  return shown;
}

bool Scene::IsDrawn(const SceneDraw& draw, const std::vector<int32_t>& bodyGroups, int32_t lod) const {
  if (draw.Lod != lod) return false;
  const auto part = static_cast<size_t>(draw.BodyPart);
  const int32_t wanted = part < bodyGroups.size() ? bodyGroups[part] : 0;
  const bool has = wanted >= 0 && static_cast<size_t>(wanted) < BodyParts[part].Models.size();
  return draw.Model == (has ? wanted : 0);
}

int32_t Scene::FindSequence(const std::string& name) const {
  const auto found = std::find_if(Sequences.begin(), Sequences.end(), [&](const SceneSequence& sequence) {
    return core::EqualIgnoringCase(sequence.Name, name);
  });
  return found == Sequences.end() ? -1 : static_cast<int32_t>(found - Sequences.begin());
}

int64_t Scene::MeshBytes() const {
  return static_cast<int64_t>(Points.size() * sizeof(ScenePoint) + Vertices.size() * sizeof(SceneVertex) +
                              Indices.size() * sizeof(uint32_t));
}

SceneCounts CountsOf(const Scene& scene, const std::vector<int32_t>& bodyGroups, int32_t lod) {
  SceneCounts counts;
  for (const SceneDraw& draw : scene.Draws) {
    if (!scene.IsDrawn(draw, bodyGroups, lod)) continue;
    counts.Triangles += draw.IndexCount / 3;
    ++counts.Draws;
  }
  for (size_t p = 0; p < scene.BodyParts.size(); ++p) {
    const std::vector<SceneModel>& models = scene.BodyParts[p].Models;
    const int32_t wanted = p < bodyGroups.size() ? bodyGroups[p] : 0;
    const size_t shown = wanted >= 0 && static_cast<size_t>(wanted) < models.size() ? static_cast<size_t>(wanted) : 0;
    if (shown >= models.size() || lod < 0 || static_cast<size_t>(lod) >= models[shown].VertexCounts.size()) continue;
    counts.Vertices += models[shown].VertexCounts[static_cast<size_t>(lod)];
  }
  return counts;
}

}  // namespace tarnwick::view

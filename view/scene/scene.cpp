#include "view/scene/scene.h"

#include <algorithm>

#include "core/paths.h"
#include "model/animation_records.h"

namespace tarnwick::view {

bool SceneSequence::IsLooping() const {
  return (Flags & model::SequenceFlagLooping) != 0;
}
bool SceneSequence::IsDelta() const {
  return (Flags & model::SequenceFlagDelta) != 0;
}
bool SceneSequence::IsAutoplay() const {
  return (Flags & model::SequenceFlagAutoplay) != 0;
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

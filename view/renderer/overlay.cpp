#include "view/renderer/overlay.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace tarnwick::view {

namespace {

using Colour = std::array<uint8_t, 4>;

constexpr Colour BoneColour{255, 210, 60, 255};
constexpr Colour JointColour{255, 120, 40, 255};
constexpr std::array<Colour, 3> AxisColours{{{235, 60, 60, 255}, {70, 200, 70, 255}, {70, 110, 245, 255}}};
constexpr Colour HullColour{60, 200, 220, 255};
constexpr Colour HullBoxColour{240, 140, 60, 255};
constexpr Colour ViewBoxColour{170, 110, 240, 255};
constexpr Colour SequenceBoxColour{240, 220, 80, 255};
constexpr Colour NormalColour{80, 170, 255, 255};
constexpr uint8_t FillAlpha = 40;

/// By the group of a hit box: generic, head, chest, stomach, left arm, right arm, left leg, right leg.
constexpr std::array<Colour, 8> GroupColours{{{200, 200, 200, 255},
                                              {235, 60, 60, 255},
                                              {70, 200, 70, 255},
                                              {235, 220, 70, 255},
                                              {70, 110, 245, 255},
                                              {225, 90, 225, 255},
                                              {70, 215, 225, 255},
                                              {245, 150, 60, 255}}};

Colour GroupColour(int32_t group) {
  const size_t count = GroupColours.size();
  return group >= 0 ? GroupColours[static_cast<size_t>(group) % count] : GroupColours[0];
}

Colour Filling(Colour colour) {
  colour[3] = FillAlpha;
  return colour;
}

/// The matrix of a bone; that of the model for -1.
Matrix34 PlaceOf(std::span<const Matrix34> bones, int32_t bone) {
  return bone >= 0 && static_cast<size_t>(bone) < bones.size() ? bones[static_cast<size_t>(bone)] : Matrix34();
}

void AddLine(std::vector<OverlayPoint>& lines, const Vec3& a, const Vec3& b, Colour colour) {
  lines.push_back({a, colour});
  lines.push_back({b, colour});
}

/// The corners of a box: bit 0 of the number chooses X, bit 1 Y, bit 2 Z.
std::array<Vec3, 8> Corners(const Box& box, const Matrix34& place) {
  std::array<Vec3, 8> corners;
  for (size_t i = 0; i < 8; ++i) {
    corners[i] = TransformPoint(
        place, {(i & 1) != 0 ? box.Maximum.X : box.Minimum.X, (i & 2) != 0 ? box.Maximum.Y : box.Minimum.Y,
                (i & 4) != 0 ? box.Maximum.Z : box.Minimum.Z});
  }
  return corners;
}

void AddBoxLines(std::vector<OverlayPoint>& lines, const Box& box, const Matrix34& place, Colour colour) {
  if (box.IsEmpty()) return;
  const auto corners = Corners(box, place);
  for (size_t i = 0; i < 8; ++i) {
    for (const size_t bit : {size_t{1}, size_t{2}, size_t{4}}) {
      if ((i & bit) == 0) AddLine(lines, corners[i], corners[i | bit], colour);
    }
  }
}

void AddBoxSides(std::vector<OverlayPoint>& triangles, const Box& box, const Matrix34& place, Colour colour) {
  if (box.IsEmpty()) return;
  const auto corners = Corners(box, place);
  constexpr std::array<std::array<size_t, 4>, 6> Sides{
      {{0, 2, 6, 4}, {1, 5, 7, 3}, {0, 4, 5, 1}, {2, 3, 7, 6}, {0, 1, 3, 2}, {4, 6, 7, 5}}};
  for (const auto& side : Sides) {
    for (const size_t corner : std::array<size_t, 6>{0, 1, 2, 0, 2, 3})
      triangles.push_back({corners[side[corner]], colour});
  }
}

void AddBones(const Scene& scene, std::span<const Matrix34> bones, Overlay& overlay) {
  for (size_t i = 0; i < scene.Bones.size() && i < bones.size(); ++i) {
    const int32_t parent = scene.Bones[i].Parent;
    const Vec3 joint = bones[i].Translation();
    if (parent >= 0) AddLine(overlay.TopLines, PlaceOf(bones, parent).Translation(), joint, BoneColour);
    overlay.TopDots.push_back({joint, JointColour});
  }
}

void AddAttachments(const Scene& scene, std::span<const Matrix34> bones, float size, Overlay& overlay) {
  for (const SceneAttachment& attachment : scene.Attachments) {
    const Matrix34 place = PlaceOf(bones, attachment.Bone) * attachment.Placement;
    for (size_t axis = 0; axis < 3; ++axis) {
      const Vec3 tip{axis == 0 ? size : 0, axis == 1 ? size : 0, axis == 2 ? size : 0};
      AddLine(overlay.TopLines, place.Translation(), TransformPoint(place, tip), AxisColours[axis]);
    }
  }
}

void AddHitboxes(const Scene& scene, int32_t set, std::span<const Matrix34> bones, Overlay& overlay) {
  if (set < 0 || static_cast<size_t>(set) >= scene.HitboxSets.size()) return;
  for (const SceneHitbox& hitbox : scene.HitboxSets[static_cast<size_t>(set)].Boxes) {
    const Matrix34 place = PlaceOf(bones, hitbox.Bone);
    const Colour colour = GroupColour(hitbox.Group);
    AddBoxSides(overlay.TopTriangles, hitbox.Extent, place, Filling(colour));
    AddBoxLines(overlay.TopLines, hitbox.Extent, place, colour);
  }
}

void AddHulls(const Scene& scene, const OverlayParts& parts, std::span<const Matrix34> bones, Overlay& overlay) {
  for (size_t i = 0; i < scene.Hulls.size(); ++i) {
    const SceneHull& hull = scene.Hulls[i];
    const Matrix34 place = PlaceOf(bones, hull.Bone);
    const auto point = [&](uint32_t index) { return TransformPoint(place, hull.Points[index]); };
    for (const uint32_t index : hull.Indices) overlay.TopTriangles.push_back({point(index), Filling(HullColour)});
    for (const uint32_t index : parts.HullEdges[i]) overlay.TopLines.push_back({point(index), HullColour});
  }
}

void AddBoxes(const Scene& scene, const ViewState& state, Overlay& overlay) {
  AddBoxLines(overlay.Lines, scene.HullBox, {}, HullBoxColour);
  AddBoxLines(overlay.Lines, scene.ViewBox, {}, ViewBoxColour);
  if (state.Sequence >= 0 && static_cast<size_t>(state.Sequence) < scene.Sequences.size()) {
    AddBoxLines(overlay.Lines, scene.Sequences[static_cast<size_t>(state.Sequence)].Extent, {}, SequenceBoxColour);
  }
}

void AddNormals(const Scene& scene, const ViewState& state, const ScenePose& pose, std::span<const ScenePoint> points,
                int32_t lod, float size, Overlay& overlay) {
  std::vector<bool> done(points.size());
  for (const SceneDraw& draw : scene.Draws) {
    if (!scene.IsDrawn(draw, state.BodyGroups, lod)) continue;
    for (int64_t i = draw.FirstIndex; i < draw.FirstIndex + draw.IndexCount; ++i) {
      const uint32_t vertex = scene.Indices[static_cast<size_t>(i)];
      if (done[vertex]) continue;
      done[vertex] = true;
      const ScenePoint at = SkinPoint(points[vertex], scene.Vertices[vertex], pose.SkinMatrices());
      AddLine(overlay.Lines, at.Position, at.Position + at.Normal * size, NormalColour);
    }
  }
}

/// Gives the colours the depth that they need to be seen on a light background.
void Darken(Overlay& overlay) {
  constexpr int Percent = 62;
  for (auto* points : {&overlay.Lines, &overlay.TopTriangles, &overlay.TopLines, &overlay.TopDots}) {
    for (OverlayPoint& point : *points) {
      for (size_t i = 0; i < 3; ++i) point.Colour[i] = static_cast<uint8_t>(point.Colour[i] * Percent / 100);
    }
  }
}

/// A grid on the ground under the model, as far as it reaches and some more, whose lines stand a power of two apart.
void AddGrid(const Box& ground, bool onDark, Overlay& overlay) {
  constexpr float Lines = 16;  // about as many from one end to the other
  const float radius = std::clamp(ground.Radius(), 1.0f, 1e6f);
  const float step = std::exp2(std::ceil(std::log2(radius * 3 / Lines)));
  const float reach = step * Lines / 2;
  const uint8_t grey = onDark ? 255 : 0;
  const Vec3 centre = ground.IsEmpty() ? Vec3() : ground.Centre();
  const float x = std::round(centre.X / step) * step, y = std::round(centre.Y / step) * step;
  for (int i = -static_cast<int>(Lines) / 2; i <= static_cast<int>(Lines) / 2; ++i) {
    const float at = static_cast<float>(i) * step;
    const auto alphaAt = [](float place) { return static_cast<uint8_t>(std::abs(place) < 0.001f ? 120 : 50); };
    AddLine(overlay.Lines, {x + at, y - reach, 0}, {x + at, y + reach, 0}, {grey, grey, grey, alphaAt(x + at)});
    AddLine(overlay.Lines, {x - reach, y + at, 0}, {x + reach, y + at, 0}, {grey, grey, grey, alphaAt(y + at)});
  }
}

}  // namespace

std::vector<uint32_t> HullEdges(const SceneHull& hull) {
  constexpr float SamePlane = 0.9999f;
  std::map<std::pair<uint32_t, uint32_t>, Vec3> sides;  // the outward normal of the first side at an edge
  std::map<std::pair<uint32_t, uint32_t>, bool> flat;
  for (size_t i = 0; i + 2 < hull.Indices.size(); i += 3) {
    const uint32_t corners[3] = {hull.Indices[i], hull.Indices[i + 1], hull.Indices[i + 2]};
    const Vec3 normal = Unit(
        Cross(hull.Points[corners[1]] - hull.Points[corners[0]], hull.Points[corners[2]] - hull.Points[corners[0]]));
    for (size_t k = 0; k < 3; ++k) {
      const std::pair edge = std::minmax({corners[k], corners[(k + 1) % 3]});
      const auto [found, isNew] = sides.emplace(edge, normal);
      if (!isNew) flat[edge] = Dot(found->second, normal) > SamePlane;
    }
  }
  std::vector<uint32_t> edges;
  for (const auto& [edge, normal] : sides) {
    const auto found = flat.find(edge);
    if (found != flat.end() && found->second) continue;
    edges.push_back(edge.first);
    edges.push_back(edge.second);
  }
  return edges;
}

OverlayParts PrepareOverlay(const Scene& scene) {
  OverlayParts parts;
  parts.HullEdges.reserve(scene.Hulls.size());
  for (const SceneHull& hull : scene.Hulls) parts.HullEdges.push_back(HullEdges(hull));
  return parts;
}

Overlay MakeOverlay(const Scene& scene, const OverlayParts& parts, const ViewState& state, const ScenePose& pose,
                    std::span<const ScenePoint> points, int32_t lod, bool onDark) {
  Overlay overlay;
  const ViewExtras& extras = state.Extras;
  const std::span<const Matrix34> bones = pose.Bones();
  Box box = scene.MeshBox;
  if (box.IsEmpty()) {
    for (const Matrix34& bone : bones) box.Add(bone.Translation());
  }
  const float radius = std::max(box.Radius(), 1.0f);
  if (extras.Boxes) AddBoxes(scene, state, overlay);
  if (extras.Normals) AddNormals(scene, state, pose, points, lod, radius * 0.03f, overlay);
  if (extras.Hitboxes) AddHitboxes(scene, state.HitboxSet, bones, overlay);
  if (extras.Hulls) AddHulls(scene, parts, bones, overlay);
  if (!onDark) Darken(overlay);
  if (extras.Bones) AddBones(scene, bones, overlay);  // which lie before the model, not the background
  if (extras.Attachments) AddAttachments(scene, bones, radius * 0.08f, overlay);
  if (extras.Grid) AddGrid(box, onDark, overlay);
  return overlay;
}

}  // namespace tarnwick::view

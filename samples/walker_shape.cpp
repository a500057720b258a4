#include <cmath>
#include <numbers>
#include <utility>

#include "walker.h"

// The figure is made of tubes that stand upright: rings of points at some heights, each with its bones, joined by a
// skin of triangles and closed at both ends. A LOD is the same tubes with fewer points a ring.

namespace tarnwick::samples {

namespace {

using model::Vec3;
using tests::BoneWeight;
using tests::LodDescription;
using tests::MeshDescription;
using tests::VertexDescription;

constexpr int LodCount = 3;
constexpr int RingPoints[LodCount] = {10, 5, 4};

struct Ring {
  Vec3 Centre;
  float RadiusX;
  float RadiusY;
  std::vector<BoneWeight> Weights;
};

/// From the top ring to the bottom ring.
using Tube = std::vector<Ring>;

/// The vertices and triangles of one LOD of a mesh while tubes are added.
struct Surface {
  std::vector<VertexDescription>& Vertices;
  std::vector<uint16_t> Indices;

  uint16_t Add(VertexDescription vertex) {
    Vertices.push_back(std::move(vertex));
    return static_cast<uint16_t>(Vertices.size() - 1);
  }
  /// A triangle whose corners go round clockwise as seen from outside, the way compiled models wind them.
  void Triangle(int a, int b, int c) {
    for (const int index : {a, b, c}) Indices.push_back(static_cast<uint16_t>(index));
  }
};

VertexDescription PointOfRing(const Ring& ring, int point, int points, float v) {
  const double angle = 2 * std::numbers::pi * point / points;
  const auto x = static_cast<float>(std::cos(angle));
  const auto y = static_cast<float>(std::sin(angle));
  return {.Position = {ring.Centre.x + ring.RadiusX * x, ring.Centre.y + ring.RadiusY * y, ring.Centre.z},
          .Normal = {x, y, 0},
          .U = static_cast<float>(point) / static_cast<float>(points),
          .V = v,
          .Weights = ring.Weights};
}

void AddCap(const Ring& ring, int points, bool isTop, Surface& surface) {
  std::vector<int> corners;
  for (int point = 0; point < points; ++point) {
    VertexDescription vertex = PointOfRing(ring, point, points, 0);
    vertex.U = 0.5f + 0.5f * vertex.Normal.x;
    vertex.V = 0.5f + 0.5f * vertex.Normal.y;
    vertex.Normal = {0, 0, isTop ? 1.0f : -1.0f};
    corners.push_back(surface.Add(std::move(vertex)));
  }
  for (size_t i = 2; i < corners.size(); ++i) {
    surface.Triangle(corners[0], corners[isTop ? i : i - 1], corners[isTop ? i - 1 : i]);
  }
}

void AddTube(const Tube& tube, int points, Surface& surface) {
  const auto first = static_cast<int>(surface.Vertices.size());
  const int stride = points + 1;  // the seam's points stand twice, with both texture coordinates
  for (size_t r = 0; r < tube.size(); ++r) {
    const float v = static_cast<float>(r) / static_cast<float>(tube.size() - 1);
    for (int point = 0; point <= points; ++point) surface.Add(PointOfRing(tube[r], point, points, v));
  }
  for (int r = 0; r + 1 < static_cast<int>(tube.size()); ++r) {
    for (int point = 0; point < points; ++point) {
      const int upper = first + r * stride + point;
      const int lower = upper + stride;
      surface.Triangle(upper, upper + 1, lower);
      surface.Triangle(upper + 1, lower + 1, lower);
    }
  }
  AddCap(tube.front(), points, true, surface);
  AddCap(tube.back(), points, false, surface);
}

std::vector<BoneWeight> Only(uint8_t bone) {
  return {{bone, 1}};
}
std::vector<BoneWeight> Between(uint8_t a, uint8_t b) {
  return {{a, 0.5f}, {b, 0.5f}};
}

std::vector<Tube> ClothTubes() {
  std::vector<Tube> tubes = {{{{0, 0, 80}, 0.4f, 0.8f, Only(Plume)},
                              {{0, 0, 76}, 0.7f, 1.6f, Only(Plume)},
                              {{0, 0, 71.8f}, 0.6f, 0.6f, Between(Head, Plume)}},
                             {{{0, 0, 57}, 2.5f, 3, Only(Spine)},
                              {{0, 0, 55}, 4.5f, 8, Only(Spine)},
                              {{0, 0, 46}, 4, 6, {{Spine, 0.75f}, {Pelvis, 0.25f}}},
                              {{0, 0, 40}, 3.5f, 5.5f, Between(Spine, Pelvis)},
                              {{0, 0, 34}, 4, 6.5f, Only(Pelvis)}}};
  for (const int side : {-1, 1}) {
    const bool right = side < 0;
    const uint8_t thigh = right ? RightThigh : LeftThigh, calf = right ? RightCalf : LeftCalf;
    const uint8_t foot = right ? RightFoot : LeftFoot, arm = right ? RightArm : LeftArm;
    const uint8_t forearm = right ? RightForearm : LeftForearm;
    const auto hip = static_cast<float>(3.2 * side);
    const auto shoulder = static_cast<float>(8.7 * side);
    tubes.push_back({{{0, hip, 36}, 3.5f, 3, Between(Pelvis, thigh)},
                     {{0, hip, 32}, 3.3f, 2.9f, Only(thigh)},
                     {{0, hip, 19}, 2.5f, 2.3f, Between(thigh, calf)},
                     {{-0.5f, hip, 13}, 2.4f, 2.2f, Only(calf)},
                     {{0, hip, 3}, 1.6f, 1.6f, Between(calf, foot)}});
    tubes.push_back({{{0.5f, hip, 3}, 2.2f, 1.8f, Only(foot)}, {{2, hip, 0}, 5, 2, Only(foot)}});
    tubes.push_back({{{0, shoulder, 56}, 1.8f, 1.8f, Between(Spine, arm)},
                     {{0, shoulder, 53}, 2, 2, Only(arm)},
                     {{0, shoulder, 44}, 1.6f, 1.6f, Between(arm, forearm)},
                     {{0, shoulder, 36}, 1.3f, 1.3f, Only(forearm)}});
  }
  return tubes;
}

std::vector<Tube> SkinTubes() {
  std::vector<Tube> tubes = {{{{0, 0, 60}, 2, 2, Only(Head)}, {{0, 0, 56}, 2.2f, 2.2f, Between(Head, Spine)}},
                             {{{0, 0, 72}, 2, 1.8f, Only(Head)},
                              {{0, 0, 70.5f}, 3.8f, 3.4f, Only(Head)},
                              {{0, 0, 67}, 4.4f, 3.8f, Only(Head)},
                              {{0, 0, 63.5f}, 4.3f, 3.7f, Only(Head)},
                              {{0.4f, 0, MouthHeight}, 3.9f, 3.2f, Only(Head)},
                              {{0.6f, 0, 59}, 2.4f, 2, Only(Head)}}};
  for (const int side : {-1, 1}) {
    const uint8_t forearm = side < 0 ? RightForearm : LeftForearm;
    const auto shoulder = static_cast<float>(8.7 * side);
    tubes.push_back({{{0, shoulder, 36}, 1.1f, 0.9f, Only(forearm)},
                     {{0, shoulder, 33.5f}, 1.7f, 0.9f, Only(forearm)},
                     {{0, shoulder, 31}, 1, 0.7f, Only(forearm)}});
  }
  return tubes;
}

/// A round patch that looks along +X.
void AddEye(float side, int points, Surface& surface) {
  constexpr float Radius = 0.8f;
  std::vector<int> corners;
  for (int point = 0; point < points; ++point) {
    const double angle = 2 * std::numbers::pi * point / points;
    const auto y = static_cast<float>(std::cos(angle));
    const auto z = static_cast<float>(std::sin(angle));
    corners.push_back(surface.Add({.Position = {EyeForward, side + Radius * y, EyeHeight + Radius * z},
                                   .Normal = {1, 0, 0},
                                   .U = 0.5f + 0.5f * y,
                                   .V = 0.5f - 0.5f * z,
                                   .Weights = Only(Head)}));
  }
  for (size_t i = 2; i < corners.size(); ++i) surface.Triangle(corners[0], corners[i], corners[i - 1]);
}

/// A mesh of `material` whose LOD number l is what `add` puts into a surface with RingPoints[l] points a ring. Eyes are
/// not drawn into the shadow.
template <typename AddFunction>
MeshDescription MakeMesh(int material, const AddFunction& add, std::vector<int32_t>& counts) {
  MeshDescription mesh{.Material = material, .Vertices = {}, .Lods = {}};
  for (int lod = 0; lod < LodCount; ++lod) {
    const size_t before = mesh.Vertices.size();
    Surface surface{mesh.Vertices, {}};
    add(lod, surface);
    mesh.Lods.push_back(surface.Indices.empty() ? LodDescription{} : tests::Triangles(std::move(surface.Indices)));
    counts.push_back(static_cast<int32_t>(mesh.Vertices.size() - before));
  }
  return mesh;
}

/// The plume on the head bends up to 40 degrees and swings back.
model::StudioJiggleBone SpringyPlume() {
  model::StudioJiggleBone plume{};
  plume.Flags = model::JiggleFlagFlexible | model::JiggleFlagAngleLimit | model::JiggleFlagKeepLength;
  plume.Length = 8;
  plume.TipMass = 4;
  plume.YawStiffness = plume.PitchStiffness = 60;
  plume.YawDamping = plume.PitchDamping = 3;
  plume.AlongStiffness = 100;
  plume.AngleLimit = static_cast<float>(40 * std::numbers::pi / 180);
  return plume;
}

}  // namespace

std::vector<tests::BoneDescription> WalkerBones() {
  std::vector<tests::BoneDescription> bones = {
      {.Name = "pelvis", .Parent = -1, .Position = {0, 0, 36}},
      {.Name = "spine", .Parent = Pelvis, .Position = {0, 0, 6}},
      {.Name = "head", .Parent = Spine, .Position = {0, 0, 16}},
      {.Name = "arm_R", .Parent = Spine, .Position = {0, -8.7f, 13}},
      {.Name = "forearm_R", .Parent = RightArm, .Position = {0, 0, -11}},
      {.Name = "arm_L", .Parent = Spine, .Position = {0, 8.7f, 13}},
      {.Name = "forearm_L", .Parent = LeftArm, .Position = {0, 0, -11}},
      {.Name = "thigh_R", .Parent = Pelvis, .Position = {0, -3.2f, -1}},
      {.Name = "calf_R", .Parent = RightThigh, .Position = {0, 0, -16}},
      {.Name = "foot_R", .Parent = RightCalf, .Position = {0, 0, -16}},
      {.Name = "thigh_L", .Parent = Pelvis, .Position = {0, 3.2f, -1}},
      {.Name = "calf_L", .Parent = LeftThigh, .Position = {0, 0, -16}},
      {.Name = "foot_L", .Parent = LeftCalf, .Position = {0, 0, -16}},
      {.Name = "plume", .Parent = Head, .Position = {0, 0, 14}, .Jiggle = SpringyPlume()},
  };
  for (auto& bone : bones) bone.RotationScale = {0.0001f, 0.0001f, 0.0001f};
  return bones;
}

std::vector<MeshDescription> WalkerMeshes(std::vector<std::vector<int32_t>>& counts) {
  counts.assign(4, {});
  const auto tubes = [](std::vector<Tube> all) {
    return [all = std::move(all)](int lod, Surface& surface) {
      for (const Tube& tube : all) AddTube(tube, RingPoints[lod], surface);
    };
  };
  const auto eye = [](float side) {
    return [side](int lod, Surface& surface) {
      if (lod + 1 < LodCount) AddEye(side, RingPoints[lod], surface);
    };
  };
  return {MakeMesh(Cloth, tubes(ClothTubes()), counts[0]), MakeMesh(Skin, tubes(SkinTubes()), counts[1]),
          MakeMesh(RightEye, eye(-EyeSide), counts[2]), MakeMesh(LeftEye, eye(EyeSide), counts[3])};
}

}  // namespace tarnwick::samples

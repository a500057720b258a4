#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/bone_math_types.h"
#include "model/procedural_records.h"
#include "model/vvd_records.h"
#include "support/face_description.h"

namespace tarnwick::tests {

// What a model of the model writer is made of: skeleton, materials and meshes. Every value has a sound default.

/// What a bone does that follows another one.
struct DrivenDescription {
  int32_t Driver = 0;
  std::vector<model::StudioTrigger> Triggers = {};
};

struct BoneDescription {
  std::string Name = "root";
  int32_t Parent = -1;
  model::Vec3 Position = {0, 0, 0};
  model::EulerAngles Angles = {0, 0, 0};  // its quaternion follows from it
  std::array<float, 3> PositionScale = {0.01f, 0.01f, 0.01f};
  std::array<float, 3> RotationScale = {0.001f, 0.001f, 0.001f};
  model::Quat Alignment = {0, 0, 0, 1};
  uint32_t Flags = 0;
  std::string SurfaceProp = {};
  std::optional<DrivenDescription> Driven = {};
  std::optional<model::StudioJiggleBone> Jiggle = {};
};

struct BoneWeight {
  uint8_t Bone = 0;
  float Weight = 1;
};

struct VertexDescription {
  model::Vec3 Position = {0, 0, 0};
  model::Vec3 Normal = {0, 0, 1};
  float U = 0;
  float V = 0;
  std::vector<BoneWeight> Weights = {BoneWeight{}};  // at most 3
};

struct StripDescription {
  std::vector<uint16_t> Vertices = {0, 1, 2};  // within the mesh; three a triangle
  bool IsTriangleStrip = false;
};

using StripGroupDescription = std::vector<StripDescription>;

/// The strip groups of a mesh in one LOD.
using LodDescription = std::vector<StripGroupDescription>;

/// A LOD with one list of triangles.
inline LodDescription Triangles(std::vector<uint16_t> vertices) {
  return {{StripDescription{std::move(vertices), false}}};
}

/// A triangle of the first bone and the first material, unless told otherwise.
struct MeshDescription {
  int32_t Material = 0;
  std::vector<VertexDescription> Vertices = {VertexDescription{}, VertexDescription{.Position = {1, 0, 0}, .U = 1},
                                             VertexDescription{.Position = {0, 1, 0}, .V = 1}};
  std::vector<LodDescription> Lods = {Triangles({0, 1, 2})};  // those that are missing have no strip group
  std::vector<FlexDescription> Flexes = {};
  int32_t Eyeball = -1;  // of the model, if the mesh is the white of it
};

struct ModelDescription {
  std::string Name = "cube.smd";  // up to 63 bytes
  std::vector<MeshDescription> Meshes = {MeshDescription{}};
  std::vector<float> SwitchDistances = {0};  // of each LOD; -1 for the shadow LOD
  std::vector<EyeballDescription> Eyeballs = {};
};

struct BodyPartDescription {
  std::string Name = "body";
  std::vector<ModelDescription> Models = {ModelDescription{}};
};

}  // namespace tarnwick::tests

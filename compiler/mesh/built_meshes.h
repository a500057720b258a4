#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "model/bone_math_types.h"
#include "model/vtx_records.h"
#include "model/vvd_records.h"

namespace tarnwick::compiler {

/// A mesh: all triangles of a model that wear one texture.
struct BuiltMesh {
  int32_t Texture = 0;
  int32_t FirstVertex = 0;  // in the model
  int32_t VertexCount = 0;
  std::array<int32_t, 8> LodVertexCounts = {};  // past the last level the last is repeated
  int32_t Eyeball = -1;                         // of the model; -1 for none
};

/// A model of a body part; an empty choice has no mesh.
struct BuiltModel {
  std::string Name;
  std::vector<BuiltMesh> Meshes;  // by rising texture
  int32_t FirstVertex = 0;        // among the vertices of all models
  int32_t VertexCount = 0;
};

struct BuiltBodyPart {
  std::string Name;
  std::vector<BuiltModel> Models;
};

// Triangles, as the .vtx file holds them.

struct BuiltStrip {
  int32_t FirstIndex = 0, IndexCount = 0;
  int32_t FirstVertex = 0, VertexCount = 0;
  int16_t MostWeights = 0;
  std::vector<int32_t> Bones;  // slot by slot; empty for a static model
};
struct BuiltStripGroup {
  std::vector<model::VtxVertex> Vertices;
  std::vector<uint16_t> Indices;
  std::vector<BuiltStrip> Strips;
  uint8_t Flags = 2;
};
struct BuiltLodMesh {
  std::vector<BuiltStripGroup> Groups;
};
struct BuiltModelLod {
  float SwitchDistance = 0;  // -1 for the shadow's
  std::vector<BuiltLodMesh> Meshes;
};
struct BuiltModelTriangles {
  std::vector<BuiltModelLod> Lods;  // as many in every model
};

/// What the meshes of all body parts become: half of the .mdl, and all that .vvd and .vtx hold.
struct BuiltMeshes {
  std::vector<std::string> Textures;        // meshes' first, then those that only skins use
  std::vector<std::vector<int16_t>> Skins;  // a row for each family; row 0 is 0, 1, 2, ...
  std::vector<BuiltBodyPart> BodyParts;
  /// A model of each body part's each model, in the same order.
  std::vector<std::vector<BuiltModelTriangles>> Triangles;
  int32_t LodCount = 1;
  bool ShadowLod = false;

  /// The vertices model by model and mesh by mesh; within a mesh those of the highest level of detail stand first.
  std::vector<model::VvdVertex> Vertices;
  std::vector<std::array<float, 4>> Tangents;
  std::vector<uint8_t> VertexLods;  // the highest level that uses the vertex

  int64_t TriangleCount = 0;  // of the first level
};

}  // namespace tarnwick::compiler

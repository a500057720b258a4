#pragma once

#include <cstddef>
#include <cstdint>

#include "model/bone_math_types.h"

namespace tarnwick::model {

// The records of a .vvd file: the vertices of a model. Offsets count from the file's start.
#pragma pack(push, 1)

/// At the start of a .vvd file.
struct VvdHeader {
  uint32_t Id;                // 0x00 "IDSV"
  int32_t Version;            // 0x04
  int32_t Checksum;           // 0x08 that of the .mdl file
  int32_t LodCount;           // 0x0C
  int32_t LodVertexCount[8];  // 0x10 vertices of each LOD
  int32_t FixupCount;         // 0x30
  int32_t FixupOffset;        // 0x34 VvdFixup
  int32_t VertexOffset;       // 0x38 VvdVertex; 0 for none
  int32_t TangentOffset;      // 0x3C 16 bytes a vertex; 0 for none
};
inline constexpr uint32_t VvdId = 0x56534449;  // "IDSV"
static_assert(offsetof(VvdHeader, FixupCount) == 0x30 && sizeof(VvdHeader) == 0x40);

/// A run of vertices as the file holds them; the runs in table order are the vertices as the meshes number them.
struct VvdFixup {
  int32_t Lod;           // 0x00
  int32_t SourceVertex;  // 0x04
  int32_t VertexCount;   // 0x08
};
static_assert(sizeof(VvdFixup) == 12);

/// One vertex. Those of all models stand in one table, a model behind the other.
struct VvdVertex {
  float Weights[3];     // 0x00
  uint8_t Bones[3];     // 0x0C bone of each weight
  uint8_t WeightCount;  // 0x0F weights in use, at most 3
  Vec3 Position;        // 0x10
  Vec3 Normal;          // 0x1C
  float U, V;           // 0x28
};
static_assert(offsetof(VvdVertex, Position) == 0x10 && sizeof(VvdVertex) == 48);

#pragma pack(pop)

}  // namespace tarnwick::model

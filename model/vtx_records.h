#pragma once

#include <cstddef>
#include <cstdint>

namespace tarnwick::model {

// The records of a .vtx file: which vertices make which triangles, a tree of body parts, models, LODs, meshes, strip
// groups and strips. Offsets count from the start of the record that holds them. Several records are packed to odd
// sizes; strip groups and strips come in more than one size (see vtx_layout.h), the fields below stand in all of them.
#pragma pack(push, 1)

/// At the start of a .vtx file.
struct VtxHeader {
  int32_t Version;  // 0x00 up to 7
  char Unread04[0x10 - 0x04];
  int32_t Checksum;            // 0x10 that of the .mdl file
  int32_t LodCount;            // 0x14 of every model
  int32_t MaterialListOffset;  // 0x18 VtxMaterialList, one a LOD
  int32_t BodyPartCount;       // 0x1C
  int32_t BodyPartOffset;      // 0x20 VtxBodyPart
};
static_assert(offsetof(VtxHeader, LodCount) == 0x14 && sizeof(VtxHeader) == 0x24);

/// The materials that a level of detail shows in the place of others; what an entry holds is not known.
struct VtxMaterialList {
  int32_t Count;   // 0x00 0 in files seen
  int32_t Offset;  // 0x04
};
static_assert(sizeof(VtxMaterialList) == 8);

/// The triangles of a StudioBodyPart; this record and those below it stand in the order of the .mdl file.
struct VtxBodyPart {
  int32_t ModelCount;   // 0x00
  int32_t ModelOffset;  // 0x04 VtxModel
};
static_assert(sizeof(VtxBodyPart) == 8);

/// The triangles of a StudioModel.
struct VtxModel {
  int32_t LodCount;   // 0x00
  int32_t LodOffset;  // 0x04 VtxModelLod
};
static_assert(sizeof(VtxModel) == 8);

/// One level of detail of a model.
struct VtxModelLod {
  int32_t MeshCount;     // 0x00
  int32_t MeshOffset;    // 0x04 VtxMesh
  float SwitchDistance;  // 0x08 exactly -1 marks the shadow LOD
};
static_assert(sizeof(VtxModelLod) == 12);

/// The triangles of a StudioMesh at one level of detail.
struct VtxMesh {
  int32_t StripGroupCount;   // 0x00
  int32_t StripGroupOffset;  // 0x04 VtxStripGroup
  uint8_t Flags;             // 0x08
};
static_assert(sizeof(VtxMesh) == 9);

/// The bytes that every strip group begins with.
struct VtxStripGroup {
  int32_t VertexCount;   // 0x00
  int32_t VertexOffset;  // 0x04 VtxVertex
  int32_t IndexCount;    // 0x08
  int32_t IndexOffset;   // 0x0C VtxIndex
  int32_t StripCount;    // 0x10
  int32_t StripOffset;   // 0x14 VtxStrip
  uint8_t Flags;         // 0x18
};
static_assert(sizeof(VtxStripGroup) == 25);

/// The bytes that every strip begins with.
struct VtxStrip {
  int32_t IndexCount;       // 0x00
  int32_t FirstIndex;       // 0x04 in the group's index array
  int32_t VertexCount;      // 0x08
  int32_t FirstVertex;      // 0x0C
  int16_t BoneCount;        // 0x10
  uint8_t Flags;            // 0x12
  int32_t BoneStateCount;   // 0x13
  int32_t BoneStateOffset;  // 0x17
};
/// Bits of VtxStripGroup's Flags: flexes move its triangles.
inline constexpr uint8_t StripGroupFlagsFlexed = 0x1 | 0x4;
inline constexpr uint8_t StripFlagTriangleStrip = 0x2;
static_assert(offsetof(VtxStrip, Flags) == 0x12 && sizeof(VtxStrip) == 27);

/// A vertex that the indices of a strip group name: which one of its mesh, and the bones that the hardware needs.
struct VtxVertex {
  uint8_t BoneWeightIndex[3];  // 0x00
  uint8_t BoneCount;           // 0x03
  uint16_t MeshVertex;         // 0x04 the vertex's index within its StudioMesh
  uint8_t Bones[3];            // 0x06
};
static_assert(offsetof(VtxVertex, MeshVertex) == 0x04 && sizeof(VtxVertex) == 9);

/// An index into the vertices of a strip group.
struct VtxIndex {
  uint16_t Vertex;
};
static_assert(sizeof(VtxIndex) == 2);

#pragma pack(pop)

/// The sizes of a .vtx file's records that differ between branches of the engine.
struct VtxLayout {
  int64_t StripGroupSize = 25;
  int64_t StripSize = 27;

  bool operator==(const VtxLayout&) const = default;
};

}  // namespace tarnwick::model

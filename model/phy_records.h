#pragma once

#include <cstddef>
#include <cstdint>

#include "model/bone_math_types.h"

namespace tarnwick::model {

// The records of a .phy file: a header, the solids one behind the other, and a text to the end of the file. A solid is
// a rigid body: its surface holds ledges (closed triangle meshes, each convex), then the points of all of them, then
// the nodes of a tree over the ledges. Lengths are metres, in axes of their own (see phy_solid.h).
#pragma pack(push, 1)

/// The start of a .phy file.
struct PhyHeader {
  int32_t HeaderSize;  // 0x00 16
  int32_t Zero04;
  int32_t SolidCount;  // 0x08
  uint32_t Checksum;   // 0x0C that of the .mdl file
};
static_assert(offsetof(PhyHeader, Checksum) == 12 && sizeof(PhyHeader) == 16);

/// What stands in front of each solid.
struct PhySolidHeader {
  int32_t Size;         // 0x00 of what follows this field
  char Tag[4];          // 0x04 "VPHY"
  int16_t Version;      // 0x08 0x0100
  int16_t Kind;         // 0x0A 0: a surface of convex pieces
  int32_t SurfaceSize;  // 0x0C Size less 28
  Vec3 AreaShares;      // 0x10 how much of the box's sides X, Y, Z of the model the pieces cover, 0 to 1
  int32_t AxisMapSize;  // 0x1C 0
};
static_assert(offsetof(PhySolidHeader, SurfaceSize) == 12 && offsetof(PhySolidHeader, AxisMapSize) == 28);
static_assert(sizeof(PhySolidHeader) == 32);

/// The surface of a solid: its mass properties, and the root of the tree over its ledges.
struct PhySurface {
  Vec3 MassCentre;            // 0x00
  Vec3 Inertia;               // 0x0C per mass
  float Radius;               // 0x18 to the point farthest from the mass centre
  uint32_t DeviationAndSize;  // 0x1C low 8 bits: deviation; high 24: the surface's size
  int32_t RootOffset;         // 0x20 PhyNode, from the surface's start
  int32_t Zero24, Zero28;
  char Tag[4];  // 0x2C "IVPS"
};
static_assert(offsetof(PhySurface, RootOffset) == 0x20 && sizeof(PhySurface) == 48);

/// The low 8 bits of PhyLedge::KindAndSize.
inline constexpr uint32_t PhyLedgePiece = 4;
inline constexpr uint32_t PhyLedgeHull = 5;

/// A closed triangle mesh: a convex piece of the solid, or a hull around pieces that the tree holds together.
struct PhyLedge {
  int32_t PointOffset;  // 0x00 PhyPoint, from the ledge's start
  int32_t BoneOrNode;   // 0x04 of a piece: bone + 1 in a joined model, 0 in a single one; of a hull: PhyNode, from here
  uint32_t KindAndSize;    // 0x08 low 8 bits: PhyLedgePiece or PhyLedgeHull; high 24: 1 + triangles + points it uses
  uint16_t TriangleCount;  // 0x0C PhyTriangle behind this record
  uint16_t Zero0E;
};
static_assert(offsetof(PhyLedge, TriangleCount) == 12 && sizeof(PhyLedge) == 16);

/// A side of a triangle: it runs from its point to that of the next side.
struct PhyEdge {
  uint32_t Bits;  // 0-15: point; 16-30: signed words from here to the same edge in the neighbour; 31: virtual

  uint16_t Point() const { return static_cast<uint16_t>(Bits); }
};

/// A triangle of a ledge, with its three sides in order.
struct PhyTriangle {
  uint32_t Bits;     // 0x00 0-11: its number in the ledge; 12-23: the triangle across; 24-30: material; 31: virtual
  PhyEdge Edges[3];  // 0x04
};
static_assert(sizeof(PhyTriangle) == 16);

/// A corner, which the triangles of several ledges may share.
struct PhyPoint {
  Vec3 Position;
  float Unused0C;  // left-over bytes
};
static_assert(sizeof(PhyPoint) == 16);

/// A node of the tree over the ledges: a box, and what is in it.
struct PhyNode {
  int32_t RightOffset;  // 0x00 PhyNode, from this node; 0 in a leaf. The left child stands behind its parent
  int32_t LedgeOffset;  // 0x04 PhyLedge, from this node; a leaf's piece, the root's hull, else 0
  Vec3 Centre;          // 0x08 of the box
  float Radius;         // 0x14 half the box's diagonal
  uint8_t Extents[3];   // 0x18 half extents in 250ths of Radius, rounded up
  uint8_t Unused1B;
};
static_assert(offsetof(PhyNode, Extents) == 24 && sizeof(PhyNode) == 28);

#pragma pack(pop)

/// Bytes of the smallest solid: headers, a ledge of two triangles is larger still.
inline constexpr int64_t SmallestPhySolid = 108;

}  // namespace tarnwick::model

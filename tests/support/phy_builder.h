#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/phy_solid.h"
#include "model/phy_values.h"

namespace tarnwick::tests {

/// A box along the model's axes, in inches.
struct BoxDescription {
  model::Vec3 Low = {-1, -1, -1};
  model::Vec3 High = {1, 1, 1};
};

/// A rigid body of boxes. What its text says stands beside its form; the volume is filled in.
struct PhySolidDescription {
  model::PhySolidValues Values = {.Name = "phys", .SurfaceProp = "metal"};
  int32_t BoneNumber = 0;  // bone + 1 in a joined model
  std::vector<BoxDescription> Boxes = std::vector<BoxDescription>(1);
};

/// The writer of .phy files: one solid, one box, unless told otherwise.
struct PhyBuilder {
  uint32_t Checksum = 0;
  std::vector<PhySolidDescription> Solids = {PhySolidDescription{}};
  model::PhyValues Values = {};  // less the solids
  std::string Tail = {};         // text behind all blocks
  bool SharesMass = false;       // the solids' masses follow from the total and their volumes

  /// The bytes of the file. Throws for what the format cannot hold.
  std::string Build() const;
};

/// The boxes' corners and triangles in the file's units and axes.
model::PhySolid BoxSolid(const std::vector<BoxDescription>& boxes, int32_t boneNumber = 0);

/// The hull round boxes that stand in a row, all as wide and high as each other: the box round them.
std::vector<model::PhyCorners> HullOfRow(const model::PhySolid& solid);

}  // namespace tarnwick::tests

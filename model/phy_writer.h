#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/phy_measures.h"
#include "model/phy_solid.h"

namespace tarnwick::model {

/// Most triangles of a piece, and points of a solid, that the format can number.
inline constexpr size_t MostPhyTriangles = 4096;
inline constexpr size_t MostPhyPoints = 65536;

/// A solid as it stands in a .phy file: header, surface with pieces, points and tree, and everything that is derived
/// from them (mass centre, inertia, radius, area shares, neighbours, the triangle across, the tree of boxes). Points
/// are renumbered in the order in which the pieces use them; each position stands once, unused ones are left out.
///
/// `massCentre` takes the place of the middle of the mass, in the file's units and axes.
/// `hull` is the convex hull round all pieces, over the solid's points; needed where there are several pieces, unused
/// where there is one. Every piece and the hull must be closed: each edge once in either direction. Nothing if one is
/// not, if there is no piece, or if the format cannot number what there is; `reason` then tells why.
[[nodiscard]] std::optional<std::string> WritePhySolid(const PhySolid& solid, const std::vector<PhyCorners>& hull,
                                                       std::string* reason = nullptr,
                                                       const PhyVector* massCentre = nullptr);

/// A whole file: header, `solids` as WritePhySolid gives them, and the text with the NUL that ends it.
std::string WritePhyFile(uint32_t checksum, const std::vector<std::string>& solids, std::string_view text);

}  // namespace tarnwick::model

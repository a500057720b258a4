#include "support/phy_builder.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "model/phy_measures.h"
#include "model/phy_writer.h"

namespace tarnwick::tests {

namespace {

using namespace model;

/// The sides of a box as they are seen from outside; bits 0, 1 and 2 of a corner's number say whether it is the high
/// one on x, y and z.
constexpr std::array<std::array<uint16_t, 4>, 6> BoxSides = {
    {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}}};

std::vector<PhyCorners> BoxTriangles(const std::array<uint16_t, 8>& corners) {
  std::vector<PhyCorners> triangles;
  for (const auto& side : BoxSides) {
    triangles.push_back({corners[side[0]], corners[side[1]], corners[side[2]]});
    triangles.push_back({corners[side[0]], corners[side[2]], corners[side[3]]});
  }
  return triangles;
}

}  // namespace

PhySolid BoxSolid(const std::vector<BoxDescription>& boxes, int32_t boneNumber) {
  PhySolid solid;
  for (const BoxDescription& box : boxes) {
    std::array<uint16_t, 8> corners{};
    for (uint16_t i = 0; i < 8; ++i) {
      corners[i] = static_cast<uint16_t>(solid.Points.size());
      solid.Points.push_back(ModelToPhy({(i & 1) != 0 ? box.High.x : box.Low.x, (i & 2) != 0 ? box.High.y : box.Low.y,
                                         (i & 4) != 0 ? box.High.z : box.Low.z}));
    }
    solid.Pieces.push_back({boneNumber, BoxTriangles(corners)});
  }
  return solid;
}

std::vector<PhyCorners> HullOfRow(const PhySolid& solid) {
  std::array<uint16_t, 8> corners{};
  for (uint16_t i = 0; i < 8; ++i) {
    const auto reach = [&](uint16_t point) {
      const Vec3 p = PhyToModel(solid.Points[point]);
      return ((i & 1) != 0 ? p.x : -p.x) + ((i & 2) != 0 ? p.y : -p.y) + ((i & 4) != 0 ? p.z : -p.z);
    };
    for (uint16_t point = 0; point < solid.Points.size(); ++point) {
      if (reach(point) > reach(corners[i])) corners[i] = point;
    }
  }
  return BoxTriangles(corners);
}

std::string PhyBuilder::Build() const {
  std::vector<std::string> solids;
  PhyValues values = Values;
  for (const PhySolidDescription& description : Solids) {
    const PhySolid solid = BoxSolid(description.Boxes, description.BoneNumber);
    std::string reason;
    auto bytes = WritePhySolid(solid, HullOfRow(solid), &reason);
    if (!bytes) throw std::invalid_argument(reason);
    solids.push_back(std::move(*bytes));
    values.Solids.push_back(description.Values);
    values.Solids.back().Volume = static_cast<float>(MeasurePhySolid(solid).CubicInches);
  }
  double sum = 0;
  for (const PhySolidValues& solid : values.Solids) sum += double{solid.Volume} * double{solid.MassBias};
  for (PhySolidValues& solid : values.Solids) {
    const double mass = double{values.TotalMass} * double{solid.Volume} * double{solid.MassBias} / sum;
    if (SharesMass) solid.Mass = static_cast<float>(std::max(1.0, mass));
  }
  return WritePhyFile(Checksum, solids, FormatPhyText(values, Tail));
}

}  // namespace tarnwick::tests

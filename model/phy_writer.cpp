#include "model/phy_writer.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <tuple>
#include <utility>

#include "model/phy_measures.h"
#include "model/phy_records.h"

namespace tarnwick::model {

namespace {

template <typename T>
void Append(std::string& bytes, const T& record) {
  bytes.append(reinterpret_cast<const char*>(&record), sizeof record);
}

Vec3 Rounded(const PhyVector& v) {
  return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

/// The surface's size has 24 bits.
constexpr int64_t LongestSurface = (int64_t{1} << 24) - 1;

using Corners = std::vector<PhyCorners>;
using Edge = std::pair<uint16_t, uint16_t>;

Edge EdgeOf(const PhyCorners& corners, size_t side) {
  return {corners[side], corners[(side + 1) % 3]};
}

/// Renumbers points in the order in which they are used; equal positions get one number.
class PointNumbers {
 public:
  explicit PointNumbers(const std::vector<Vec3>& points) : m_points(points) {}

  Corners Renumber(const Corners& triangles) {
    Corners renumbered = triangles;
    for (PhyCorners& corners : renumbered) {
      for (uint16_t& corner : corners) corner = NumberOf(m_points[corner]);
    }
    return renumbered;
  }

  std::vector<Vec3> Used;

 private:
  uint16_t NumberOf(const Vec3& p) {
    // Zeros of both signs are one place.
    const auto [entry, isNew] = m_numbers.try_emplace({p.x + 0.0f, p.y + 0.0f, p.z + 0.0f}, Used.size());
    if (isNew) Used.push_back(p);
    return static_cast<uint16_t>(entry->second);
  }

  const std::vector<Vec3>& m_points;
  std::map<std::tuple<float, float, float>, size_t> m_numbers;
};

/// Where the neighbour across each edge of a closed mesh is: the number of the neighbour's edge, 3 * triangle + side.
using Neighbours = std::map<Edge, uint32_t>;

/// Nothing if an edge stands twice in one direction or not at all in the other.
std::optional<Neighbours> NeighboursOf(const Corners& triangles) {
  Neighbours edges;
  for (uint32_t i = 0; i < triangles.size(); ++i) {
    for (uint32_t side = 0; side < 3; ++side) {
      const Edge edge = EdgeOf(triangles[i], side);
      if (edge.first == edge.second || !edges.try_emplace(edge, 3 * i + side).second) return std::nullopt;
    }
  }
  for (const auto& [edge, number] : edges) {
    if (edges.count({edge.second, edge.first}) == 0) return std::nullopt;
  }
  return edges;
}

/// For each triangle the one across. From the first on, a triangle that has none yet takes the one whose normal is most
/// opposite to its own, which takes it in return, also where it had another.
std::vector<uint32_t> TrianglesAcross(const PhySolid& solid, const Corners& triangles) {
  constexpr uint32_t None = ~uint32_t{0};
  std::vector<PhyVector> normals;
  normals.reserve(triangles.size());
  for (const PhyCorners& corners : triangles) normals.push_back(PhyNormal(solid, corners));
  std::vector<uint32_t> across(triangles.size(), None);
  for (uint32_t i = 0; i < triangles.size(); ++i) {
    if (across[i] != None) continue;
    double least = std::numeric_limits<double>::infinity();
    uint32_t best = i;
    for (uint32_t other = 0; other < triangles.size(); ++other) {
      const double product =
          normals[i][0] * normals[other][0] + normals[i][1] * normals[other][1] + normals[i][2] * normals[other][2];
      if (product < least) {
        least = product;
        best = other;
      }
    }
    across[i] = best;
    across[best] = i;
  }
  return across;
}

/// A box as tree nodes hold it.
struct Box {
  PhyVector Low, High;

  static Box Of(const PhySolid& solid, const Corners& triangles) {
    constexpr double Infinity = std::numeric_limits<double>::infinity();
    Box box{{Infinity, Infinity, Infinity}, {-Infinity, -Infinity, -Infinity}};
    for (const PhyCorners& corners : triangles) {
      for (const uint16_t corner : corners) {
        const Vec3& p = solid.Points[corner];
        box.Add({{double{p.x}, double{p.y}, double{p.z}}, {double{p.x}, double{p.y}, double{p.z}}});
      }
    }
    return box;
  }

  void Add(const Box& other) {
    for (size_t k = 0; k < 3; ++k) {
      Low[k] = std::min(Low[k], other.Low[k]);
      High[k] = std::max(High[k], other.High[k]);
    }
  }

  double Middle(size_t axis) const { return (Low[axis] + High[axis]) / 2; }
};

PhyNode NodeOf(const Box& box) {
  PhyNode node{};
  PhyVector half{};
  PhyVector centre{};
  for (size_t k = 0; k < 3; ++k) {
    centre[k] = box.Middle(k);
    half[k] = (box.High[k] - box.Low[k]) / 2;
  }
  const double radius = std::sqrt(half[0] * half[0] + half[1] * half[1] + half[2] * half[2]);
  node.Centre = Rounded(centre);
  node.Radius = static_cast<float>(radius);
  for (size_t k = 0; k < 3; ++k) {
    node.Extents[k] = static_cast<uint8_t>(radius > 0 ? std::floor(250 * half[k] / radius) + 1 : 1);
  }
  return node;
}

/// The box that a leaf counts with in the nodes above it: what can be told from its record.
Box StoredBox(const PhyNode& node) {
  Box box{};
  const PhyVector centre = {double{node.Centre.x}, double{node.Centre.y}, double{node.Centre.z}};
  for (size_t k = 0; k < 3; ++k) {
    const double half = node.Extents[k] * double{node.Radius} / 250;
    box.Low[k] = centre[k] - half;
    box.High[k] = centre[k] + half;
  }
  return box;
}

/// The tree over the pieces: a branch parts them at the middle one along the longest side of their box.
class Tree {
 public:
  /// `pieceOffsets` and `hullOffset` (if there are several pieces) count from the surface's start, `place` too.
  Tree(std::vector<Box> pieceBoxes, std::vector<int64_t> pieceOffsets, int64_t hullOffset, int64_t place)
      : m_boxes(std::move(pieceBoxes)), m_offsets(std::move(pieceOffsets)), m_place(place) {
    std::vector<size_t> pieces(m_boxes.size());
    std::iota(pieces.begin(), pieces.end(), size_t{0});
    Add(pieces.data(), pieces.size());
    if (pieces.size() > 1) Nodes[0].LedgeOffset = static_cast<int32_t>(hullOffset - place);
  }

  std::vector<PhyNode> Nodes;

 private:
  Box Add(size_t* pieces, size_t count) {
    const size_t index = Nodes.size();
    Nodes.emplace_back();
    const int64_t place = m_place + static_cast<int64_t>(index * sizeof(PhyNode));
    if (count == 1) {
      Nodes[index] = NodeOf(m_boxes[*pieces]);
      Nodes[index].LedgeOffset = static_cast<int32_t>(m_offsets[*pieces] - place);
      return StoredBox(Nodes[index]);
    }
    const size_t left = Part(pieces, count);
    Box box = Add(pieces, left);
    const int64_t right = m_place + static_cast<int64_t>(Nodes.size() * sizeof(PhyNode));
    box.Add(Add(pieces + left, count - left));
    Nodes[index] = NodeOf(box);
    Nodes[index].RightOffset = static_cast<int32_t>(right - place);
    return box;
  }

  size_t Part(size_t* pieces, size_t count) const {
    Box all = m_boxes[*pieces];
    for (size_t i = 1; i < count; ++i) all.Add(m_boxes[pieces[i]]);
    size_t axis = 0;
    for (size_t k = 1; k < 3; ++k) {
      if (all.High[k] - all.Low[k] > all.High[axis] - all.Low[axis]) axis = k;
    }
    std::stable_sort(pieces, pieces + count,
                     [&](size_t a, size_t b) { return m_boxes[a].Middle(axis) < m_boxes[b].Middle(axis); });
    return count / 2;
  }

  std::vector<Box> m_boxes;
  std::vector<int64_t> m_offsets;
  int64_t m_place;
};

/// Writes a ledge's triangles behind its record.
void AppendTriangles(std::string& bytes, const PhySolid& solid, const Corners& triangles, const Neighbours& neighbours,
                     const std::set<PhyCorners>& pieceTriangles, const std::set<Edge>& pieceEdges, bool isHull) {
  constexpr uint32_t Virtual = uint32_t{1} << 31;
  const auto wordOf = [](uint32_t edge) { return static_cast<int32_t>(edge / 3 * 4 + edge % 3 + 1); };
  const std::vector<uint32_t> across = TrianglesAcross(solid, triangles);
  for (uint32_t i = 0; i < triangles.size(); ++i) {
    PhyTriangle triangle{};
    triangle.Bits = i | across[i] << 12;
    PhyCorners sorted = triangles[i];
    std::sort(sorted.begin(), sorted.end());
    if (isHull && pieceTriangles.count(sorted) == 0) triangle.Bits |= Virtual;
    for (uint32_t side = 0; side < 3; ++side) {
      const Edge edge = EdgeOf(triangles[i], side);
      const int32_t distance = wordOf(neighbours.at({edge.second, edge.first})) - wordOf(3 * i + side);
      uint32_t bits = edge.first | (static_cast<uint32_t>(distance) & 0x7FFF) << 16;
      if (isHull && pieceEdges.count(std::minmax(edge.first, edge.second)) == 0) bits |= Virtual;
      triangle.Edges[side].Bits = bits;
    }
    Append(bytes, triangle);
  }
}

class SolidWriter {
 public:
  SolidWriter(const PhySolid& solid, const Corners& hull) {
    PointNumbers numbers(solid.Points);
    for (const PhyPiece& piece : solid.Pieces) {
      m_solid.Pieces.push_back({piece.BoneNumber, numbers.Renumber(piece.Triangles)});
    }
    const size_t used = numbers.Used.size();
    if (solid.Pieces.size() > 1) m_hull = numbers.Renumber(hull);
    m_hullIsForeign = numbers.Used.size() > used;
    m_solid.Points = std::move(numbers.Used);
  }

  std::optional<std::string> Write(std::string& reason, const PhyVector* massCentre) {
    if (!Check(reason)) return std::nullopt;
    const PhyMeasures measures = MeasurePhySolid(m_solid, massCentre);
    std::string bytes;
    AppendHeads(bytes, measures);
    for (size_t i = 0; i < m_solid.Pieces.size(); ++i) AppendPiece(bytes, i);
    if (m_solid.Pieces.size() > 1) AppendHull(bytes);
    for (const Vec3& p : m_solid.Points) Append(bytes, PhyPoint{p, 0});
    std::vector<Box> boxes;
    for (const PhyPiece& piece : m_solid.Pieces) boxes.push_back(Box::Of(m_solid, piece.Triangles));
    for (const PhyNode& node : Tree(std::move(boxes), m_offsets, m_hullOffset, m_treeOffset).Nodes) Append(bytes, node);
    return bytes;
  }

 private:
  bool Check(std::string& reason) {
    const auto fail = [&](std::string why) {
      reason = std::move(why);
      return false;
    };
    if (m_solid.Pieces.empty()) return fail("it has no piece");
    if (m_solid.Points.size() > MostPhyPoints) {
      return fail("it has " + std::to_string(m_solid.Points.size()) + " points, and the format numbers no more than " +
                  std::to_string(MostPhyPoints));
    }
    for (const Vec3& p : m_solid.Points) {
      for (const float value : {float{p.x}, float{p.y}, float{p.z}}) {
        if (!(std::fabs(value) <= FarthestPhyCoordinate)) return fail("a point is not finite or far outside the world");
      }
    }
    for (const PhyPiece& piece : m_solid.Pieces) {
      if (!CheckMesh(piece.Triangles, "a piece", reason)) return false;
    }
    if (m_solid.Pieces.size() > 1) {
      if (m_hullIsForeign) return fail("the hull round its pieces has points that no piece has");
      if (!CheckMesh(m_hull, "the hull round its pieces", reason)) return false;
    }
    PlaceLedges();
    if (m_size > LongestSurface) return fail("its pieces need more bytes than the format can tell");
    return true;
  }

  bool CheckMesh(const Corners& triangles, const std::string& what, std::string& reason) {
    if (triangles.size() < 2 || triangles.size() > MostPhyTriangles) {
      reason = what + " has " + std::to_string(triangles.size()) + " triangles, and the format takes 2 to " +
               std::to_string(MostPhyTriangles);
      return false;
    }
    auto neighbours = NeighboursOf(triangles);
    if (!neighbours) {
      reason = what + " is not closed";
      return false;
    }
    m_neighbours.push_back(std::move(*neighbours));
    return true;
  }

  static int64_t LedgeSize(const Corners& triangles) {
    return static_cast<int64_t>(sizeof(PhyLedge) + triangles.size() * sizeof(PhyTriangle));
  }

  void PlaceLedges() {
    int64_t place = sizeof(PhySurface);
    for (const PhyPiece& piece : m_solid.Pieces) {
      m_offsets.push_back(place);
      place += LedgeSize(piece.Triangles);
    }
    m_hullOffset = place;
    if (m_solid.Pieces.size() > 1) place += LedgeSize(m_hull);
    m_pointOffset = place;
    m_treeOffset = place + static_cast<int64_t>(m_solid.Points.size() * sizeof(PhyPoint));
    m_size = m_treeOffset + static_cast<int64_t>((2 * m_solid.Pieces.size() - 1) * sizeof(PhyNode));
  }

  void AppendHeads(std::string& bytes, const PhyMeasures& measures) const {
    PhySolidHeader header{};
    header.Size = static_cast<int32_t>(m_size + 28);
    std::memcpy(header.Tag, "VPHY", sizeof header.Tag);
    header.Version = 0x0100;
    header.SurfaceSize = static_cast<int32_t>(m_size);
    header.AreaShares = Rounded(measures.AreaShares);
    Append(bytes, header);
    PhySurface surface{};
    surface.MassCentre = Rounded(measures.MassCentre);
    surface.Inertia = Rounded(measures.Inertia);
    surface.Radius = static_cast<float>(measures.Radius);
    surface.DeviationAndSize = measures.Deviation | static_cast<uint32_t>(m_size) << 8;
    surface.RootOffset = static_cast<int32_t>(m_treeOffset);
    std::memcpy(surface.Tag, "IVPS", sizeof surface.Tag);
    Append(bytes, surface);
  }

  PhyLedge LedgeOf(const Corners& triangles, int64_t place, uint32_t kind, int32_t boneOrNode) const {
    std::set<uint16_t> points;
    for (const PhyCorners& corners : triangles) points.insert(corners.begin(), corners.end());
    PhyLedge ledge{};
    ledge.PointOffset = static_cast<int32_t>(m_pointOffset - place);
    ledge.BoneOrNode = boneOrNode;
    ledge.KindAndSize = kind | static_cast<uint32_t>(1 + triangles.size() + points.size()) << 8;
    ledge.TriangleCount = static_cast<uint16_t>(triangles.size());
    return ledge;
  }

  void AppendPiece(std::string& bytes, size_t index) const {
    const PhyPiece& piece = m_solid.Pieces[index];
    Append(bytes, LedgeOf(piece.Triangles, m_offsets[index], PhyLedgePiece, piece.BoneNumber));
    AppendTriangles(bytes, m_solid, piece.Triangles, m_neighbours[index], {}, {}, false);
  }

  void AppendHull(std::string& bytes) const {
    std::set<PhyCorners> triangles;
    std::set<Edge> edges;
    for (const PhyPiece& piece : m_solid.Pieces) {
      for (PhyCorners corners : piece.Triangles) {
        for (size_t side = 0; side < 3; ++side) {
          const Edge edge = EdgeOf(corners, side);
          edges.insert(std::minmax(edge.first, edge.second));
        }
        std::sort(corners.begin(), corners.end());
        triangles.insert(corners);
      }
    }
    Append(bytes, LedgeOf(m_hull, m_hullOffset, PhyLedgeHull, static_cast<int32_t>(m_treeOffset - m_hullOffset)));
    AppendTriangles(bytes, m_solid, m_hull, m_neighbours.back(), triangles, edges, true);
  }

  PhySolid m_solid;
  Corners m_hull;
  bool m_hullIsForeign = false;
  std::vector<Neighbours> m_neighbours;  // of the pieces, then of the hull
  std::vector<int64_t> m_offsets;        // of the pieces; all from the surface's start
  int64_t m_hullOffset = 0;
  int64_t m_pointOffset = 0;
  int64_t m_treeOffset = 0;
  int64_t m_size = 0;
};

}  // namespace

std::optional<std::string> WritePhySolid(const PhySolid& solid, const std::vector<PhyCorners>& hull,
                                         std::string* reason, const PhyVector* massCentre) {
  std::string why;
  auto bytes = SolidWriter(solid, hull).Write(why, massCentre);
  if (!bytes && reason != nullptr) *reason = std::move(why);
  return bytes;
}

std::string WritePhyFile(uint32_t checksum, const std::vector<std::string>& solids, std::string_view text) {
  std::string bytes;
  Append(bytes, PhyHeader{.HeaderSize = sizeof(PhyHeader),
                          .Zero04 = 0,
                          .SolidCount = static_cast<int32_t>(solids.size()),
                          .Checksum = checksum});
  for (const std::string& solid : solids) bytes += solid;
  bytes += text;
  bytes += '\0';
  return bytes;
}

}  // namespace tarnwick::model

#include "compiler/physics/collision_pieces.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "compiler/mesh/vertex_join.h"
#ifdef TARNWICK_HULLS
#include "model/convex_hull.h"
#endif
#include "model/phy_writer.h"

namespace tarnwick::compiler {

namespace {

/// The hull round points; nothing where they are flat, or where the build has no hulls.
std::optional<std::vector<model::PhyCorners>> HullOf(std::span<const model::Vec3> points) {
#ifdef TARNWICK_HULLS
  if (points.size() <= model::MostPhyPoints) return model::ConvexHull(points);
#else
  static_cast<void>(points);
#endif
  return std::nullopt;
}

/// Sets that grow together.
class Unions {
 public:
  explicit Unions(size_t count) : m_parents(count) { std::iota(m_parents.begin(), m_parents.end(), 0U); }
  uint32_t Find(uint32_t i) {
    while (m_parents[i] != i) {
      m_parents[i] = m_parents[m_parents[i]];
      i = m_parents[i];
    }
    return i;
  }
  void Join(uint32_t a, uint32_t b) {
    a = Find(a);
    b = Find(b);
    // The lower number stays, so that the result does not follow the order of joining.
    m_parents[std::max(a, b)] = std::min(a, b);
  }

 private:
  std::vector<uint32_t> m_parents;
};

/// Points by their place, each once, in the order of their first use.
class PointNumbers {
 public:
  uint32_t NumberOf(const model::Vec3& p) {
    MeshVertex vertex;
    vertex.Position = p;
    return m_joiner.Add(vertex);
  }
  std::vector<model::Vec3> Points() const {
    std::vector<model::Vec3> points;
    points.reserve(m_joiner.Vertices.size());
    for (const MeshVertex& vertex : m_joiner.Vertices) points.push_back(vertex.Position);
    return points;
  }

 private:
  VertexJoiner m_joiner{JoinRule{180}};
};

/// The triangles as they stand, if they are closed: each edge once in either direction, and few enough for a piece.
std::optional<CollisionPiece> ClosedPiece(std::span<const CollisionCorner> corners) {
  if (corners.size() < 6 || corners.size() / 3 > model::MostPhyTriangles) return std::nullopt;
  PointNumbers numbers;
  CollisionPiece piece;
  std::set<std::pair<uint16_t, uint16_t>> edges;
  for (size_t i = 0; i + 2 < corners.size(); i += 3) {
    model::PhyCorners triangle{};
    for (size_t k = 0; k < 3; ++k) triangle[k] = static_cast<uint16_t>(numbers.NumberOf(corners[i + k].Position));
    for (size_t k = 0; k < 3; ++k) {
      const uint16_t from = triangle[k], to = triangle[(k + 1) % 3];
      if (from == to || !edges.emplace(from, to).second) return std::nullopt;
    }
    piece.Triangles.push_back(triangle);
  }
  for (const auto& [from, to] : edges) {
    if (edges.count({to, from}) == 0) return std::nullopt;
  }
  piece.Points = numbers.Points();
  return piece;
}

std::optional<CollisionPiece> HullPiece(std::span<const CollisionCorner> corners) {
  PointNumbers numbers;
  for (const CollisionCorner& corner : corners) numbers.NumberOf(corner.Position);
  CollisionPiece piece;
  piece.Points = numbers.Points();
  auto hull = HullOf(piece.Points);
  if (!hull || hull->size() > model::MostPhyTriangles) return std::nullopt;
  piece.Triangles = std::move(*hull);
  return piece;
}

std::optional<CollisionPiece> PieceOf(std::span<const CollisionCorner> corners, const PieceRule& rule) {
  if (rule.KeepClosed) {
    if (auto piece = ClosedPiece(corners)) return piece;
  }
  return HullPiece(corners);
}

}  // namespace

std::vector<std::vector<CollisionCorner>> ConnectedSets(std::span<const CollisionCorner> corners, float normalAngle) {
  VertexJoiner joiner(JoinRule{normalAngle});
  std::vector<uint32_t> vertices;
  vertices.reserve(corners.size());
  for (const CollisionCorner& corner : corners) {
    MeshVertex vertex;
    vertex.Position = corner.Position;
    vertex.Normal = corner.Normal;
    vertices.push_back(joiner.Add(vertex));
  }
  Unions unions(joiner.Vertices.size());
  for (size_t i = 0; i + 2 < vertices.size(); i += 3) {
    unions.Join(vertices[i], vertices[i + 1]);
    unions.Join(vertices[i], vertices[i + 2]);
  }
  std::vector<std::vector<CollisionCorner>> sets;
  std::unordered_map<uint32_t, size_t> places;
  for (size_t i = 0; i + 2 < vertices.size(); i += 3) {
    const auto [place, isNew] = places.try_emplace(unions.Find(vertices[i]), sets.size());
    if (isNew) sets.emplace_back();
    const auto first = corners.begin() + static_cast<std::ptrdiff_t>(i);
    sets[place->second].insert(sets[place->second].end(), first, first + 3);
  }
  return sets;
}

std::vector<CollisionPiece> PiecesOf(std::span<const CollisionCorner> corners, const PieceRule& rule) {
  std::vector<CollisionPiece> pieces;
  if (rule.Split) {
    for (const auto& set : ConnectedSets(corners, rule.NormalAngle)) {
      if (auto piece = PieceOf(set, rule)) pieces.push_back(std::move(*piece));
    }
  }
  if (pieces.empty()) {
    if (auto piece = PieceOf(corners, rule)) pieces.push_back(std::move(*piece));
  }
  return pieces;
}

model::PhySolid SolidOf(const std::vector<CollisionPiece>& pieces, int32_t boneNumber,
                        std::vector<model::PhyCorners>& hull) {
  model::PhySolid solid;
  PointNumbers numbers;
  for (const CollisionPiece& piece : pieces) {
    model::PhyPiece& made = solid.Pieces.emplace_back();
    made.BoneNumber = boneNumber;
    made.Triangles.reserve(piece.Triangles.size());
    for (const model::PhyCorners& triangle : piece.Triangles) {
      model::PhyCorners renumbered{};
      for (size_t k = 0; k < 3; ++k) {
        renumbered[k] = static_cast<uint16_t>(std::min<uint32_t>(numbers.NumberOf(piece.Points[triangle[k]]), 65535));
      }
      made.Triangles.push_back(renumbered);
    }
  }
  const std::vector<model::Vec3> points = numbers.Points();
  hull.clear();
  if (pieces.size() > 1) {
    auto round = HullOf(points);
    // Pieces that all lie in one plane have no hull; any closed mesh stands for it.
    hull = round ? std::move(*round) : solid.Pieces.front().Triangles;
  }
  solid.Points.reserve(points.size());
  for (const model::Vec3& point : points) solid.Points.push_back(model::ModelToPhy(point));
  return solid;
}

}  // namespace tarnwick::compiler

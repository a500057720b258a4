#include "decompiler/writers/physics_smd.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>

#include "smd/vertex_lines.h"

namespace tarnwick::decompiler {

namespace {

using Vector = std::array<double, 3>;

/// A place as the file's six decimals tell it.
using Place = std::array<int64_t, 3>;

Place PlaceOf(const Vec3& p) {
  return {std::llround(p.x * 1e6), std::llround(p.y * 1e6), std::llround(p.z * 1e6)};
}

/// Normals this near, as the cosine between them, might be taken for one: half as much again as two degrees.
const double SameNormal = std::cos(3.0 / 180 * 3.14159265358979323846);

/// As many normals as are told apart at one place; a solid has no more pieces that meet at a point.
constexpr size_t MostNormals = 16;

Vector Direction(const Vec3& from, const Vec3& to) {
  const Vector v = {double{to.x} - double{from.x}, double{to.y} - double{from.y}, double{to.z} - double{from.z}};
  const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
  if (!(length > 0)) return {0, 0, 1};
  return {v[0] / length, v[1] / length, v[2] / length};
}

/// Gives each piece a middle from which its points are seen, such that no other piece's point at the same place is seen
/// in the same direction.
class Middles {
 public:
  Vec3 MiddleOf(const PhysicsMesh& mesh, const PhyPiece& piece) {
    std::set<uint16_t> corners;
    for (const PhyCorners& triangle : piece.Triangles) corners.insert(triangle.begin(), triangle.end());
    Vec3 low = mesh.Points[*corners.begin()], high = low;
    for (const uint16_t corner : corners) {
      const Vec3& p = mesh.Points[corner];
      low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    Vec3 middle{};
    for (int i = 0; i < Candidates; ++i) {
      middle = Candidate(low, high, i);
      if (IsFree(mesh, corners, middle)) break;
    }
    for (const uint16_t corner : corners) {
      std::vector<Vector>& normals = m_normals[PlaceOf(mesh.Points[corner])];
      if (normals.size() < MostNormals) normals.push_back(Direction(middle, mesh.Points[corner]));
    }
    return middle;
  }

 private:
  static constexpr int Candidates = 27;

  /// The middle of the box, then places half-way to its sides and corners.
  static Vec3 Candidate(const Vec3& low, const Vec3& high, int number) {
    constexpr std::array<float, 3> Parts = {0.5f, 0.3f, 0.65f};
    const auto part = [&](int digit) { return Parts[static_cast<size_t>(digit % 3)]; };
    return {low.x + (high.x - low.x) * part(number), low.y + (high.y - low.y) * part(number / 3),
            low.z + (high.z - low.z) * part(number / 9)};
  }

  bool IsFree(const PhysicsMesh& mesh, const std::set<uint16_t>& corners, const Vec3& middle) const {
    for (const uint16_t corner : corners) {
      const auto found = m_normals.find(PlaceOf(mesh.Points[corner]));
      if (found == m_normals.end()) continue;
      const Vector normal = Direction(middle, mesh.Points[corner]);
      for (const Vector& other : found->second) {
        if (normal[0] * other[0] + normal[1] * other[1] + normal[2] * other[2] > SameNormal) return false;
      }
    }
    return true;
  }

  std::map<Place, std::vector<Vector>> m_normals;
};

void WriteCorner(core::TextWriter& writer, int32_t bone, const Vec3& middle, const Vec3& point) {
  const Vector normal = Direction(middle, point);
  smd::Vertex vertex;
  vertex.Bone = bone;
  vertex.Position = {point.x, point.y, point.z};
  vertex.Normal = {static_cast<float>(normal[0]), static_cast<float>(normal[1]), static_cast<float>(normal[2])};
  vertex.LinkCount = 1;
  vertex.Links[0] = {bone, 1};
  char text[smd::LongestVertexLine];
  writer.Raw(std::string_view(text, static_cast<size_t>(smd::WriteVertexLine(text, vertex, true) - text)));
}

}  // namespace

int64_t RemoveCopies(PhysicsMesh& mesh) {
  std::set<std::vector<Place>> met;
  return static_cast<int64_t>(std::erase_if(mesh.Pieces, [&](const PhyPiece& piece) {
    std::vector<Place> places;
    places.reserve(piece.Triangles.size() * 3);
    for (const PhyCorners& triangle : piece.Triangles) {
      for (const uint16_t corner : triangle) places.push_back(PlaceOf(mesh.Points[corner]));
    }
    return !met.insert(std::move(places)).second;
  }));
}

void WritePhysicsTriangles(core::TextWriter& writer, std::span<const PhysicsMesh> meshes) {
  Middles middles;
  for (const PhysicsMesh& mesh : meshes) {
    for (const PhyPiece& piece : mesh.Pieces) {
      const Vec3 middle = middles.MiddleOf(mesh, piece);
      for (const PhyCorners& triangle : piece.Triangles) {
        writer.Text("physics\n");
        for (const uint16_t corner : triangle) WriteCorner(writer, mesh.Bone, middle, mesh.Points[corner]);
      }
    }
  }
}

}  // namespace tarnwick::decompiler

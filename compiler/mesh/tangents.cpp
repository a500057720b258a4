#include "compiler/mesh/tangents.h"

#include <cmath>

namespace tarnwick::compiler {

namespace {

using Vector = std::array<double, 3>;

Vector VectorOf(const model::Vec3& v) {
  return {double{v.x}, double{v.y}, double{v.z}};
}
double Dot(const Vector& a, const Vector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
Vector Cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// False for what has no length.
bool MakeUnit(Vector& v) {
  const double length = std::sqrt(Dot(v, v));
  if (!(length > 0) || !std::isfinite(length)) return false;
  for (double& value : v) value /= length;
  return true;
}

struct Sums {
  Vector S{}, T{};
};

void AddTriangle(std::span<const MeshVertex> vertices, const MeshTriangle& triangle, std::vector<Sums>& sums) {
  const MeshVertex& a = vertices[triangle[0]];
  const auto edge = [&](uint32_t corner) {
    const Vector p = VectorOf(vertices[corner].Position), origin = VectorOf(a.Position);
    return Vector{p[0] - origin[0], p[1] - origin[1], p[2] - origin[2]};
  };
  const Vector e1 = edge(triangle[1]), e2 = edge(triangle[2]);
  const double s1 = double{vertices[triangle[1]].U} - double{a.U}, s2 = double{vertices[triangle[2]].U} - double{a.U};
  const double t1 = double{vertices[triangle[1]].V} - double{a.V}, t2 = double{vertices[triangle[2]].V} - double{a.V};
  const double area = s1 * t2 - s2 * t1;
  if (area == 0 || !std::isfinite(area)) return;
  Vector s{}, t{};
  for (size_t k = 0; k < 3; ++k) {
    s[k] = (t2 * e1[k] - t1 * e2[k]) / area;
    t[k] = (s1 * e2[k] - s2 * e1[k]) / area;
  }
  const bool haveS = MakeUnit(s), haveT = MakeUnit(t);
  for (const uint32_t corner : triangle) {
    for (size_t k = 0; k < 3; ++k) {
      if (haveS) sums[corner].S[k] += s[k];
      if (haveT) sums[corner].T[k] += t[k];
    }
  }
}

}  // namespace

std::vector<std::array<float, 4>> TangentsOf(std::span<const MeshVertex> vertices,
                                             std::span<const MeshTriangle> triangles) {
  std::vector<Sums> sums(vertices.size());
  for (const MeshTriangle& triangle : triangles) AddTriangle(vertices, triangle, sums);
  std::vector<std::array<float, 4>> tangents(vertices.size(), {0, 0, 0, 1});
  for (size_t i = 0; i < vertices.size(); ++i) {
    const Vector normal = VectorOf(vertices[i].Normal);
    Vector s = sums[i].S;
    const double along = Dot(s, normal);
    for (size_t k = 0; k < 3; ++k) s[k] -= normal[k] * along;
    if (!MakeUnit(s)) continue;
    const float side = Dot(Cross(normal, s), sums[i].T) < 0 ? -1.0f : 1.0f;
    tangents[i] = {static_cast<float>(s[0]), static_cast<float>(s[1]), static_cast<float>(s[2]), side};
  }
  return tangents;
}

}  // namespace tarnwick::compiler

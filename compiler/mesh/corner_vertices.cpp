#include "compiler/mesh/corner_vertices.h"

#include <cmath>

namespace tarnwick::compiler {

namespace {

/// The cosine of a quarter turn as floats have it: a static model's places go through it, and keep its error.
constexpr float QuarterCosine = -4.371139e-08f;

/// What `0 - value` prints as a zero with a sign.
constexpr float JustAboveZero = 1e-20f;

constexpr double Degree = 3.14159265358979323846 / 180;

model::Vec3 Unit(const model::Vec3& v) {
  const double x = double{v.x}, y = double{v.y}, z = double{v.z};
  const double length = std::sqrt(x * x + y * y + z * z);
  if (!(length > 0) || !std::isfinite(length)) return {0, 0, 0};
  return {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length)};
}

/// The negative of a number read from a file, such that a minus ahead of a zero is not forgotten when it is negated
/// again by a subtraction.
float Negated(float value) {
  return value == 0 ? (std::signbit(value) ? JustAboveZero : 0.0f) : -value;
}

/// 1 - v; a zero with a sign stands for a value just beyond 1.
float FromOne(float v) {
  if (v == 0 && std::signbit(v)) return std::nextafter(1.0f, 2.0f);
  return 1.0f - v;
}

}  // namespace

CornerVertices::CornerVertices(const smd::SmdSource& source, const SourceUse& use, const ModelBones& bones, size_t lod,
                               const CompileOptions& options)
    : m_source(source), m_use(use), m_options(options), m_bones(bones.OfNodes(source)), m_static(bones.Static) {
  for (int32_t& bone : m_bones) bone = bones.AtLod(bone, lod);
  if (m_bones.empty()) m_bones.push_back(0);
  if (use.OriginTurn != 0) {
    m_turnCosine = static_cast<float>(std::cos(double{use.OriginTurn} * Degree));
    m_turnSine = static_cast<float>(std::sin(double{use.OriginTurn} * Degree));
  }
}

model::Vec3 CornerVertices::Turned(model::Vec3 v) const {
  if (m_use.YUp) v = {v.x, Negated(v.z), v.y};
  if (m_use.OriginTurn != 0) {
    v = {v.x * m_turnCosine - v.y * m_turnSine, v.x * m_turnSine + v.y * m_turnCosine, v.z};
  }
  return v;
}

model::Vec3 CornerVertices::PlaceOf(const smd::Triple& place) const {
  model::Vec3 p = Turned({place.X, place.Y, place.Z});
  if (m_use.Scale != 1) p = {p.x * m_use.Scale, p.y * m_use.Scale, p.z * m_use.Scale};
  if (m_use.Origin.x != 0) p.x += m_use.Origin.x;
  if (m_use.Origin.y != 0) p.y += m_use.Origin.y;
  if (m_use.Origin.z != 0) p.z += m_use.Origin.z;
  if (!m_static) return p;
  if (m_options.KeepValues) return {Negated(p.y), p.x, p.z};
  return {p.x * QuarterCosine - p.y, p.x + p.y * QuarterCosine, p.z};
}

model::Vec3 CornerVertices::DirectionOf(const smd::Triple& direction) const {
  model::Vec3 n = Turned({direction.X, direction.Y, direction.Z});
  if (m_use.Reverse) n = {Negated(n.x), Negated(n.y), Negated(n.z)};
  if (m_options.KeepValues) return m_static ? model::Vec3{Negated(n.y), n.x, n.z} : n;
  n = Unit(n);
  if (m_static) n = {n.x * QuarterCosine - n.y, n.x + n.y * QuarterCosine, n.z};
  return n;
}

MeshVertex CornerVertices::Make(const smd::SourceCorner& corner) const {
  return {.Position = PlaceOf(corner.Position),
          .Normal = DirectionOf(corner.Normal),
          .U = corner.U,
          .V = m_options.KeepValues ? FromOne(corner.V) : 1.0f - corner.V,
          .Weights = m_static ? CornerWeights{1, {0, 0, 0}, {1, 0, 0}}
                              : WeightsOfCorner(m_source, corner, m_bones, m_options.KeepValues)};
}

}  // namespace tarnwick::compiler

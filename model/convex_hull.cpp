#include "model/convex_hull.h"

extern "C" {
#include <libqhull_r/qhull_ra.h>
}

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "core/number_text.h"
#include "model/phy_writer.h"

namespace tarnwick::model {

namespace {

using Vector = std::array<double, 3>;

Vector VectorOf(const Vec3& p) {
  return {double{p.x}, double{p.y}, double{p.z}};
}
Vector Difference(const Vector& a, const Vector& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
Vector Cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
double Dot(const Vector& a, const Vector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
double Length(const Vector& a) {
  return std::sqrt(Dot(a, a));
}

/// A few times what rounding can move a point: half of the last of six decimals, or of a float's last place.
double RoundingBound(std::span<const Vec3> points) {
  double largest = 0;
  for (const Vec3& p : points) {
    for (const float value : {float{p.x}, float{p.y}, float{p.z}})
      largest = std::max(largest, std::fabs(double{value}));
  }
  return 4 * std::max(5e-7, largest * 0x1p-24);
}

bool AreFinite(std::span<const Vec3> points) {
  return std::all_of(points.begin(), points.end(),
                     [](const Vec3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); });
}

/// Whether all points lie within `bound` of one plane.
bool AreFlat(std::span<const Vec3> points, double bound) {
  if (points.size() < 4) return true;
  const Vector origin = VectorOf(points[0]);
  const auto farthest = [&](auto distance) {
    Vector best{};
    double most = -1;
    for (const Vec3& p : points) {
      const Vector v = Difference(VectorOf(p), origin);
      if (distance(v) > most) {
        most = distance(v);
        best = v;
      }
    }
    return std::pair(best, most);
  };
  auto [direction, length] = farthest([](const Vector& v) { return Length(v); });
  if (length <= bound) return true;
  Vector along = direction;  // a binding cannot be captured
  for (double& value : along) value /= length;
  const auto [aside, width] = farthest([&](const Vector& v) { return Length(Cross(along, v)); });
  if (width <= bound) return true;
  Vector normal = Cross(along, aside);
  for (double& value : normal) value /= width;
  const auto [above, height] = farthest([&](const Vector& v) { return std::fabs(Dot(normal, v)); });
  return height <= bound;
}

/// The corners of a convex side, put in order round its middle as they are seen from outside.
std::vector<uint16_t> InOrder(std::vector<uint16_t> corners, std::span<const Vec3> points, const Vector& normal) {
  std::sort(corners.begin(), corners.end());
  Vector middle{};
  for (const uint16_t corner : corners) {
    for (size_t k = 0; k < 3; ++k) middle[k] += VectorOf(points[corner])[k] / static_cast<double>(corners.size());
  }
  const Vector right = Difference(VectorOf(points[corners[0]]), middle);
  const Vector up = Cross(normal, right);
  const auto angle = [&](uint16_t corner) {
    const Vector v = Difference(VectorOf(points[corner]), middle);
    return std::atan2(Dot(v, up), Dot(v, right));
  };
  std::vector<std::pair<double, uint16_t>> turned;
  turned.reserve(corners.size());
  for (const uint16_t corner : corners) turned.emplace_back(corner == corners[0] ? -4.0 : angle(corner), corner);
  for (auto& [turn, corner] : turned) {
    if (turn < 0 && turn > -4) turn += 2 * 3.14159265358979323846;
  }
  std::sort(turned.begin(), turned.end());
  for (size_t i = 0; i < corners.size(); ++i) corners[i] = turned[i].second;
  return corners;
}

/// Parts a convex side into triangles round its first corner.
void AddSide(std::vector<PhyCorners>& triangles, const std::vector<uint16_t>& corners) {
  for (size_t i = 1; i + 1 < corners.size(); ++i) triangles.push_back({corners[0], corners[i], corners[i + 1]});
}

bool IsClosed(const std::vector<PhyCorners>& triangles) {
  std::set<std::pair<uint16_t, uint16_t>> edges;
  for (const PhyCorners& t : triangles) {
    for (size_t side = 0; side < 3; ++side) {
      if (!edges.emplace(t[side], t[(side + 1) % 3]).second) return false;
    }
  }
  return triangles.size() >= 4 && std::all_of(edges.begin(), edges.end(), [&](const auto& edge) {
           return edges.count({edge.second, edge.first}) != 0;
         });
}

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// Where the library's messages go: a hull that it cannot make is told by its result.
File OpenNowhere() {
#ifdef _WIN32
  return File(std::fopen("nul", "w"));
#else
  return File(std::fopen("/dev/null", "w"));
#endif
}

/// One run of the library, which keeps everything in its own record.
class QhullRun {
 public:
  explicit QhullRun(std::FILE* messages) { qh_zero(&m_qh, messages); }
  QhullRun(const QhullRun&) = delete;
  QhullRun& operator=(const QhullRun&) = delete;
  ~QhullRun() {
    int leftBytes = 0;
    int leftBlocks = 0;
    m_qh.NOerrexit = True;
    qh_freeqhull(&m_qh, !qh_ALL);
    qh_memfreeshort(&m_qh, &leftBytes, &leftBlocks);
  }

  /// Makes the hull of `count` points, which must stay. False if that cannot be.
  bool Make(double* coordinates, size_t count, std::string options, std::FILE* messages) {
    return qh_new_qhull(&m_qh, 3, static_cast<int>(count), coordinates, False, options.data(), nullptr, messages) == 0;
  }

  /// Gives `take` the corners (as numbers of points) and the outward normal of each side.
  template <typename Take>
  void ForEachSide(Take take) {
    for (const facetT* side = m_qh.facet_list; side != nullptr && side->next != nullptr; side = side->next) {
      std::vector<size_t> corners;
      for (const setelemT* element = side->vertices->e; element->p != nullptr; ++element) {
        const auto* vertex = static_cast<const vertexT*>(element->p);
        corners.push_back(static_cast<size_t>(vertex->point - m_qh.first_point) / 3);
      }
      take(corners, Vector{side->normal[0], side->normal[1], side->normal[2]});
    }
  }

 private:
  qhT m_qh;
};

/// The hull as the library gives it under `options`; not closed where sides that it has merged do not fit together, and
/// empty if it gives none.
std::vector<PhyCorners> HullUnder(const std::string& options, std::span<const Vec3> points,
                                  const std::vector<uint16_t>& distinct) {
  std::vector<double> coordinates;
  coordinates.reserve(3 * distinct.size());
  for (const uint16_t index : distinct) {
    for (const double value : VectorOf(points[index])) coordinates.push_back(value);
  }
  std::vector<PhyCorners> triangles;
  const File messages = OpenNowhere();
  if (!messages) return triangles;
  QhullRun run(messages.get());
  if (!run.Make(coordinates.data(), distinct.size(), "qhull " + options, messages.get())) return triangles;
  run.ForEachSide([&](const std::vector<size_t>& side, const Vector& normal) {
    std::vector<uint16_t> corners;
    corners.reserve(side.size());
    for (const size_t corner : side) corners.push_back(distinct[corner]);
    AddSide(triangles, InOrder(std::move(corners), points, normal));
  });
  std::sort(triangles.begin(), triangles.end());
  return triangles;
}

}  // namespace

std::optional<std::vector<PhyCorners>> ConvexHull(std::span<const Vec3> points) {
  if (points.size() > MostPhyPoints || !AreFinite(points)) return std::nullopt;
  const double bound = RoundingBound(points);
  if (AreFlat(points, bound)) return std::nullopt;
  std::map<Vector, uint16_t> places;
  std::vector<uint16_t> distinct;
  for (size_t i = 0; i < points.size(); ++i) {
    Vector place = VectorOf(points[i]);
    for (double& value : place) value += 0.0;  // zeros of both signs are one place
    if (places.try_emplace(place, static_cast<uint16_t>(i)).second) distinct.push_back(static_cast<uint16_t>(i));
  }
  for (const std::string& options : {"C-" + core::FixedText(bound, 12), std::string("C-0"), std::string("Qt")}) {
    std::vector<PhyCorners> triangles = HullUnder(options, points, distinct);
    if (IsClosed(triangles)) return triangles;
  }
  return std::nullopt;
}

}  // namespace tarnwick::model

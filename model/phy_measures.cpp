#include "model/phy_measures.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <utility>
#include <vector>

namespace tarnwick::model {

namespace {

/// Side of the cells by which area shares are counted, in inches.
constexpr double CellSize = 0.5;

/// A solid whose volume is below this part of its radius's cube is flat: rounded coordinates alone give as much.
constexpr double FlatVolume = 1e-7;

PhyVector Difference(const PhyVector& a, const PhyVector& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

PhyVector Cross(const PhyVector& a, const PhyVector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double Dot(const PhyVector& a, const PhyVector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

double Length(const PhyVector& a) {
  return std::sqrt(Dot(a, a));
}

PhyVector PointOf(const PhySolid& solid, uint16_t index) {
  const Vec3& p = solid.Points[index];
  return {double{p.x}, double{p.y}, double{p.z}};
}

using Triangle = std::array<PhyVector, 3>;

Triangle TriangleOf(const PhySolid& solid, const PhyCorners& corners, const PhyVector& origin) {
  return {Difference(PointOf(solid, corners[0]), origin), Difference(PointOf(solid, corners[1]), origin),
          Difference(PointOf(solid, corners[2]), origin)};
}

/// Six times the volume between a triangle and the origin.
double SixVolumes(const Triangle& t) {
  return Dot(t[0], Cross(t[1], t[2]));
}

template <typename Take>
void ForEachTriangle(const PhySolid& solid, const PhyVector& origin, Take take) {
  for (const PhyPiece& piece : solid.Pieces) {
    for (const PhyCorners& corners : piece.Triangles) take(TriangleOf(solid, corners, origin));
  }
}

PhyVector MiddleOf(const PhySolid& solid) {
  PhyVector sum{};
  for (const Vec3& p : solid.Points) {
    sum[0] += double{p.x};
    sum[1] += double{p.y};
    sum[2] += double{p.z};
  }
  for (double& value : sum) value /= static_cast<double>(std::max<size_t>(solid.Points.size(), 1));
  return sum;
}

double RadiusFrom(const PhySolid& solid, const PhyVector& centre) {
  double radius = 0;
  for (const Vec3& p : solid.Points) {
    radius = std::max(radius, Length(Difference({double{p.x}, double{p.y}, double{p.z}}, centre)));
  }
  return radius;
}

/// Volume and mass centre of the pieces, the latter relative to `origin`.
std::pair<double, PhyVector> VolumeAndCentre(const PhySolid& solid, const PhyVector& origin) {
  double volume = 0;
  PhyVector centre{};
  ForEachTriangle(solid, origin, [&](const Triangle& t) {
    const double part = SixVolumes(t) / 6;
    volume += part;
    for (size_t k = 0; k < 3; ++k) centre[k] += part * (t[0][k] + t[1][k] + t[2][k]) / 4;
  });
  for (double& value : centre) value /= volume;
  return {volume, centre};
}

struct VolumeCentre {
  double Volume = 0;  // 0 of a flat solid, whose centre is the middle of its points
  PhyVector Centre{};
};

VolumeCentre FindVolumeCentre(const PhySolid& solid) {
  const PhyVector middle = MiddleOf(solid);
  const double reach = RadiusFrom(solid, middle);
  const auto [volume, centre] = VolumeAndCentre(solid, middle);
  if (!(volume > FlatVolume * reach * reach * reach)) return {0, middle};
  return {volume, {middle[0] + centre[0], middle[1] + centre[1], middle[2] + centre[2]}};
}

PhyVector InertiaOf(const PhySolid& solid, const PhyVector& centre, double volume) {
  PhyVector moment{};
  ForEachTriangle(solid, centre, [&](const Triangle& t) {
    const double part = SixVolumes(t) / 120;
    for (size_t k = 0; k < 3; ++k) {
      const double sum = t[0][k] + t[1][k] + t[2][k];
      moment[k] += part * (t[0][k] * t[0][k] + t[1][k] * t[1][k] + t[2][k] * t[2][k] + sum * sum);
    }
  });
  for (double& value : moment) value /= volume;
  return {std::hypot(moment[1], moment[2]), std::hypot(moment[0], moment[2]), std::hypot(moment[0], moment[1])};
}

uint8_t DeviationOf(const PhySolid& solid, const PhyVector& centre, double radius) {
  double greatest = 0;
  for (const PhyPiece& piece : solid.Pieces) {
    for (const PhyCorners& corners : piece.Triangles) {
      const PhyVector normal = PhyNormal(solid, corners);
      for (const PhyVector& corner : TriangleOf(solid, corners, centre)) {
        greatest = std::max(greatest, Length(Cross(normal, corner)));
      }
    }
  }
  if (radius <= 0) return 1;
  return static_cast<uint8_t>(std::clamp(std::floor(250 * greatest / radius) + 1, 1.0, 255.0));
}

/// A run of cells, first to last.
using CellRun = std::pair<int64_t, int64_t>;

/// Where the line v = `height` meets the triangle, projected to the axes `u` and `v`.
void AddCrossing(const Triangle& t, size_t u, size_t v, double height, double& low, double& high) {
  for (size_t i = 0; i < 3; ++i) {
    const PhyVector& a = t[i];
    const PhyVector& b = t[(i + 1) % 3];
    if (std::min(a[v], b[v]) > height || std::max(a[v], b[v]) < height) continue;
    const double along = a[v] == b[v] ? 0 : (height - a[v]) / (b[v] - a[v]);
    const double place = a[u] + along * (b[u] - a[u]);
    low = std::min(low, place);
    high = std::max(high, place);
    if (a[v] == b[v]) {
      low = std::min(low, b[u]);
      high = std::max(high, b[u]);
    }
  }
}

int64_t CellsIn(std::vector<CellRun>& runs) {
  std::sort(runs.begin(), runs.end());
  int64_t cells = 0;
  int64_t next = 0;
  for (const auto& [first, last] : runs) {
    cells += std::max<int64_t>(0, last - std::max(first, next) + 1);
    next = std::max(next, last + 1);
  }
  return cells;
}

/// The pieces in inches and the model's axes, from the low corner of their box on.
struct Boxed {
  std::vector<std::vector<Triangle>> Pieces = {};
  PhyVector Extents{};
};

Boxed BoxedPieces(const PhySolid& solid) {
  constexpr double Infinity = std::numeric_limits<double>::infinity();
  const auto toModel = [&](uint16_t index) {
    const PhyVector p = PointOf(solid, index);
    return PhyVector{p[0] / MetresPerInch, p[2] / MetresPerInch, -p[1] / MetresPerInch};
  };
  PhyVector low = {Infinity, Infinity, Infinity};
  PhyVector high = {-Infinity, -Infinity, -Infinity};
  for (size_t i = 0; i < solid.Points.size(); ++i) {
    const PhyVector p = toModel(static_cast<uint16_t>(i));
    for (size_t k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], p[k]);
      high[k] = std::max(high[k], p[k]);
    }
  }
  Boxed boxed{.Extents = Difference(high, low)};
  for (const PhyPiece& piece : solid.Pieces) {
    auto& triangles = boxed.Pieces.emplace_back();
    for (const PhyCorners& corners : piece.Triangles) {
      triangles.push_back({Difference(toModel(corners[0]), low), Difference(toModel(corners[1]), low),
                           Difference(toModel(corners[2]), low)});
    }
  }
  return boxed;
}

/// The cells of one row that a piece covers: a convex piece covers one run.
struct RowSpan {
  double Low = std::numeric_limits<double>::infinity();
  double High = -std::numeric_limits<double>::infinity();
};

/// The first and last row whose middle the triangles reach; the first is behind the last if they reach none.
CellRun RowsOf(std::span<const Triangle> triangles, size_t v, int64_t rows) {
  double low = std::numeric_limits<double>::infinity();
  double high = -low;
  for (const Triangle& t : triangles) {
    for (const PhyVector& corner : t) {
      low = std::min(low, corner[v]);
      high = std::max(high, corner[v]);
    }
  }
  if (low > high) return {0, -1};
  return {std::max<int64_t>(static_cast<int64_t>(std::ceil(low / CellSize - 0.5)), 0),
          std::min(static_cast<int64_t>(std::floor(high / CellSize - 0.5)), rows - 1)};
}

/// The share of the middles of the cells of the plane (`u`, `v`) at which a line across the plane meets a piece.
double AreaShare(const Boxed& boxed, size_t u, size_t v) {
  const auto count = [&](size_t axis) {
    return static_cast<int64_t>(std::floor(boxed.Extents[axis] / CellSize + 0.5));
  };
  const int64_t columns = count(u);
  const int64_t rows = count(v);
  if (columns <= 0 || rows <= 0) return 0;
  std::vector<std::vector<CellRun>> covered(static_cast<size_t>(rows));
  for (const std::vector<Triangle>& piece : boxed.Pieces) {
    const auto [top, bottom] = RowsOf(piece, v, rows);
    if (top > bottom) continue;
    std::vector<RowSpan> spans(static_cast<size_t>(bottom - top + 1));
    for (const Triangle& t : piece) {
      const auto [first, last] = RowsOf({&t, 1}, v, rows);
      for (int64_t row = first; row <= last; ++row) {
        RowSpan& span = spans[static_cast<size_t>(row - top)];
        AddCrossing(t, u, v, (static_cast<double>(row) + 0.5) * CellSize, span.Low, span.High);
      }
    }
    for (size_t i = 0; i < spans.size(); ++i) {
      const auto first = static_cast<int64_t>(std::ceil(std::max(spans[i].Low, 0.0) / CellSize - 0.5));
      const auto last = static_cast<int64_t>(std::floor(std::min(spans[i].High, boxed.Extents[u]) / CellSize - 0.5));
      if (spans[i].Low <= spans[i].High && first <= last) {
        covered[static_cast<size_t>(top) + i].emplace_back(first, std::min(last, columns - 1));
      }
    }
  }
  int64_t cells = 0;
  for (std::vector<CellRun>& runs : covered) cells += CellsIn(runs);
  return static_cast<double>(cells) / (static_cast<double>(columns) * static_cast<double>(rows));
}

}  // namespace

PhyVector PhyNormal(const PhySolid& solid, const PhyCorners& corners) {
  const PhyVector a = PointOf(solid, corners[0]);
  PhyVector normal = Cross(Difference(PointOf(solid, corners[1]), a), Difference(PointOf(solid, corners[2]), a));
  const double length = Length(normal);
  if (length > 0) {
    for (double& value : normal) value /= length;
  }
  return normal;
}

PhyCentre CentreOfPieces(const PhySolid& solid) {
  const VolumeCentre found = FindVolumeCentre(solid);
  return {found.Centre, RadiusFrom(solid, found.Centre)};
}

PhyMeasures MeasurePhySolid(const PhySolid& solid, const PhyVector* massCentre) {
  PhyMeasures measures;
  const auto [volume, centre] = FindVolumeCentre(solid);
  const bool isFlat = volume == 0;
  measures.MassCentre = centre;
  measures.CubicInches = volume / (MetresPerInch * MetresPerInch * MetresPerInch);
  if (massCentre != nullptr) measures.MassCentre = *massCentre;
  measures.Radius = RadiusFrom(solid, measures.MassCentre);
  if (isFlat) {
    measures.Inertia.fill(measures.Radius * measures.Radius / 2);
  } else {
    measures.Inertia = InertiaOf(solid, measures.MassCentre, volume);
  }
  measures.Deviation = DeviationOf(solid, measures.MassCentre, measures.Radius);
  const Boxed boxed = BoxedPieces(solid);
  measures.AreaShares = {AreaShare(boxed, 1, 2), AreaShare(boxed, 0, 2), AreaShare(boxed, 0, 1)};
  return measures;
}

}  // namespace tarnwick::model

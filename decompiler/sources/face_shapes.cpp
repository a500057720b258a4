#include "decompiler/sources/face_shapes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "model/bone_math.h"
#include "model/vertex_file.h"

namespace tarnwick::decompiler::sources {

namespace {

constexpr float WholeSide = 255;
/// From this version on all speeds are the highest.
constexpr int32_t VersionOfWholeSpeeds = 49;

/// Calls `take` with each vertex animation of a flex and its record's place.
template <typename Take>
void ForEachChange(JobContext& job, const FaceShapes& shapes, const core::Record<StudioFlex>& flex, const Take& take) {
  const int64_t size = shapes.Flexes.VertAnimSizeOf(*flex);
  const int64_t offset = flex.Offset() + flex->VertAnimOffset;
  if (flex->VertAnimCount <= 0 || !job.Model.View().Fits(offset, flex->VertAnimCount, size)) return;
  if (!job.Spend(int64_t{flex->VertAnimCount} * int64_t{sizeof(StudioVertAnim)})) return;
  for (int64_t i = 0; i < flex->VertAnimCount; ++i) {
    if (const auto change = job.Model.View().At<StudioVertAnim>(offset + i * size)) take(*change, offset + i * size);
  }
}

struct SidePoint {
  float X;
  uint8_t Side;
};

std::vector<SidePoint> SidesOf(JobContext& job, const FaceShapes& shapes, const FaceShape& shape) {
  std::vector<SidePoint> points;
  for (const MeshFlex& entry : shape.Flexes) {
    const auto vertices = GetMeshVertexData(job, shapes.Flexes.Meshes[entry.Mesh]);
    if (!vertices) continue;
    ForEachChange(job, shapes, entry.Flex, [&](const core::Record<StudioVertAnim>& change, int64_t) {
      const VvdVertex* vertex = GetMeshVertex(*vertices, change->Vertex);
      if (vertex != nullptr && std::isfinite(vertex->Position.x)) points.push_back({vertex->Position.x, change->Side});
    });
  }
  return points;
}

/// The side that a vertex at `x` has: a smooth step from 0 at -width to 255 at width.
float SideAt(float x, float width) {
  const float t = std::clamp((x + width) / (2 * width), 0.0f, 1.0f);
  return WholeSide * (3 - 2 * t) * t * t;
}

/// What a compile may do to a side: round it, or cut its fraction off.
constexpr float RoundedBy = 0.501f, CutBy = 1;

int64_t CountMisses(const std::vector<SidePoint>& points, float width, bool mirrored, float tolerance) {
  return std::count_if(points.begin(), points.end(), [&](const SidePoint& point) {
    const float side = SideAt(mirrored ? -point.X : point.X, width);
    return std::abs(side - static_cast<float>(point.Side)) > tolerance;
  });
}

/// The widths that the vertices between the sides ask for, least first.
std::vector<float> WidthsOf(const std::vector<SidePoint>& points) {
  std::vector<float> widths;
  for (const SidePoint& point : points) {
    if (point.Side == 0 || point.Side == WholeSide) continue;
    // The inverse of the smooth step 3 t t - 2 t t t.
    const double step = point.Side / double{WholeSide};
    const double part = 1 - 2 * (0.5 - std::sin(std::asin(1 - 2 * step) / 3));  // from -1 to 1 across the band
    if (std::abs(part) > 0.05) widths.push_back(static_cast<float>(std::abs(double{point.X} / part)));
  }
  std::sort(widths.begin(), widths.end());
  return widths;
}

/// The width with the fewest decimals of those that give every vertex its side within `tolerance`; nothing if there is
/// none. That is most likely the one that was typed, and a second decompile finds it again.
std::optional<float> WidthOfAll(const std::vector<SidePoint>& points, double tolerance) {
  const auto part = [](double side) {  // from -1 to 1 across the band
    return -2 * std::sin(std::asin(1 - 2 * std::clamp(side / double{WholeSide}, 0.0, 1.0)) / 3);
  };
  double least = 0, most = std::numeric_limits<double>::max();
  for (const SidePoint& point : points) {
    const double low = part(point.Side - tolerance), high = part(point.Side + tolerance);
    const double x = std::abs(double{point.X});
    const double near = low * high > 0 ? std::min(std::abs(low), std::abs(high)) : 0;
    const double far = std::max(std::abs(low), std::abs(high));
    // What lies beyond the band has the side of its end, however far off it is.
    if (point.Side > tolerance && point.Side < double{WholeSide} - tolerance) least = std::max(least, x / far);
    if (near > 0) most = std::min(most, x / near);
  }
  if (least > most || most == std::numeric_limits<double>::max()) return std::nullopt;
  for (const double step : {1.0, 0.5, 0.1, 0.01, 0.001, 0.0001}) {
    const double width = std::ceil(least / step) * step;
    if (width > least && width < most) return static_cast<float>(width);
  }
  return static_cast<float>((least + most) / 2);
}

float Rounded(float value, float step) {
  return std::round(value / step) * step;
}

/// Beyond it all vertices are as fast as can be: nobody typed that.
constexpr double LargestDecay = 64;

/// The factors with which every speed of a flex follows from how far its vertices move.
struct DecayRange {
  double Least = 0, Most = std::numeric_limits<double>::max();

  bool Holds(double decay) const { return decay >= Least && decay <= Most; }
};

DecayRange DecaysOf(JobContext& job, const FaceShapes& shapes, const core::Record<StudioFlex>& flex) {
  std::vector<std::pair<double, uint8_t>> moves;
  double longest = 0;
  bool allWhole = true;
  ForEachChange(job, shapes, flex, [&](const core::Record<StudioVertAnim>& change, int64_t) {
    Vec3 delta;
    DecodeVec48(change->PositionDelta, delta);
    const double length = std::sqrt(double{delta.x} * delta.x + double{delta.y} * delta.y + double{delta.z} * delta.z);
    longest = std::max(longest, length);
    allWhole = allWhole && change->Speed == WholeSide;
    moves.emplace_back(length, change->Speed);
  });
  DecayRange range;
  if (longest == 0 || (job.Model.Header()->Version >= VersionOfWholeSpeeds && allWhole)) return range;
  // Lengths are of half-floats, and a compile rounds or cuts.
  constexpr double Below = 0.6, Above = 1.1;
  for (const auto& [length, speed] : moves) {
    const double whole = double{WholeSide} * length / longest;
    if (whole <= 0) continue;
    range.Least = std::max(range.Least, (speed - Below) / whole);
    if (speed < WholeSide) range.Most = std::min(range.Most, (speed + Above) / whole);
  }
  return range;
}

DecayRange DecaysOf(JobContext& job, const FaceShapes& shapes, const FaceShape& shape) {
  DecayRange all;
  for (const MeshFlex& entry : shape.Flexes) {
    const DecayRange one = DecaysOf(job, shapes, entry.Flex);
    all = {std::max(all.Least, one.Least), std::min(all.Most, one.Most)};
  }
  return all;
}

bool HasWrinkles(JobContext& job, const FaceShapes& shapes, const core::Record<StudioFlex>& flex) {
  bool any = false;
  if (flex->VertAnimKind != VertAnimWrinkle) return any;
  ForEachChange(job, shapes, flex, [&](const core::Record<StudioVertAnim>&, int64_t offset) {
    const auto record = job.Model.View().At<StudioWrinkleVertAnim>(offset);
    any = any || (record && (*record)->WrinkleDelta != 0);
  });
  return any;
}

}  // namespace

std::optional<FaceShapes> GatherFaceShapes(JobContext& job, const core::Record<StudioModel>& model,
                                           size_t descriptorCount) {
  auto flexes = GatherFlexes(job, model, descriptorCount);
  if (!flexes) return std::nullopt;
  FaceShapes shapes{std::move(*flexes), {}};
  for (size_t d = 0; d < descriptorCount; ++d) {
    const auto first = static_cast<std::ptrdiff_t>(shapes.Shapes.size());
    for (const MeshFlex& entry : shapes.Flexes.ByDescriptor[d]) {
      const StudioFlex& flex = *entry.Flex;
      const std::array<float, 4> targets = {flex.Targets[0], flex.Targets[1], flex.Targets[2], flex.Targets[3]};
      if (!job.Spend(static_cast<int64_t>(shapes.Shapes.size()) - first)) return shapes;
      const auto found = std::find_if(shapes.Shapes.begin() + first, shapes.Shapes.end(), [&](const FaceShape& shape) {
        return shape.Partner == flex.Partner && shape.Targets == targets && shape.Flexes.back().Mesh != entry.Mesh;
      });
      if (found != shapes.Shapes.end()) {
        found->Flexes.push_back(entry);
      } else {
        shapes.Shapes.push_back({d, flex.Partner, targets, {entry}});
      }
    }
  }
  return shapes;
}

PairSplit FindPairSplit(JobContext& job, const FaceShapes& shapes, const FaceShape& shape) {
  const std::vector<SidePoint> points = SidesOf(job, shapes, shape);
  PairSplit split;
  if (points.empty()) return split;
  // Where no vertex lies between the sides any width fits that ends ahead of the nearest vertex.
  std::vector<float> widths = WidthsOf(points);
  float nearest = 1;
  for (const SidePoint& point : points) {
    if (point.X != 0) nearest = std::min(nearest, std::abs(point.X));
  }
  std::vector<float> candidates;
  for (const double tolerance : {0.5, 1.0}) {
    if (const auto width = WidthOfAll(points, tolerance)) candidates.push_back(*width);
  }
  candidates.push_back(1);
  const auto offer = [&](float width) {
    for (const float step : {1.0f, 0.5f, 0.1f, 0.01f, 0.001f}) candidates.push_back(Rounded(width, step));
    candidates.push_back(width);
  };
  if (widths.empty()) {
    candidates.push_back(nearest);
  } else {
    offer(widths[widths.size() / 2]);
  }
  int64_t least = -1;
  bool isExact = false;  // of the best one: a width that gives the very sides goes ahead of one that nearly does
  for (const float width : candidates) {
    if (!(width > 0) || !std::isfinite(width)) continue;
    for (const bool mirrored : {false, true}) {
      const int64_t misses = CountMisses(points, width, mirrored, CutBy);
      if (least >= 0 && (misses > least || (misses == least && isExact))) continue;
      const bool exact = CountMisses(points, width, mirrored, RoundedBy) == 0;
      if (misses == least && !exact) continue;
      least = misses;
      isExact = exact;
      split = {width, mirrored, misses == 0};
    }
  }
  return split;
}

float ReachAcross(JobContext& job, const FaceShapes& shapes, const FaceShape& shape, bool mirrored) {
  float reach = 0;
  for (const SidePoint& point : SidesOf(job, shapes, shape)) reach = std::max(reach, mirrored ? -point.X : point.X);
  return reach;
}

float FindDecay(JobContext& job, const FaceShapes& shapes, const FaceShape& shape) {
  const DecayRange range = DecaysOf(job, shapes, shape);
  if (range.Holds(1) || range.Least > std::min(range.Most, LargestDecay)) return 1;
  // The one with the fewest decimals is most likely the one that was typed.
  for (const double step : {1.0, 0.5, 0.1, 0.05, 0.01, 0.001}) {
    const double decay = std::ceil(range.Least / step) * step;
    if (decay > 0 && range.Holds(decay)) return static_cast<float>(decay);
  }
  return static_cast<float>((range.Least + std::min(range.Most, LargestDecay)) / 2);
}

void CountLostOfShapes(JobContext& job, const FaceShapes& shapes) {
  for (const FaceShape& shape : shapes.Shapes) {
    for (const MeshFlex& entry : shape.Flexes) {
      if (HasWrinkles(job, shapes, entry.Flex)) job.Lose("flexes whose wrinkles have no statement");
    }
    const DecayRange decays = DecaysOf(job, shapes, shape);
    if (decays.Least > std::min(decays.Most, LargestDecay)) {
      job.Lose("flexes whose speeds do not follow from their moves", static_cast<int64_t>(shape.Flexes.size()));
    }
  }
}

}  // namespace tarnwick::decompiler::sources

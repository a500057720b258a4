#include "compiler/mesh/shape_file.h"

#include <algorithm>

namespace tarnwick::compiler {

SourceUse ShapeUse(const SourceUse& mesh) {
  SourceUse use = mesh;
  use.Scale = 1;
  return use;
}

std::vector<int32_t> ShapeSources(const PlanModel& model) {
  std::vector<int32_t> sources;
  const auto add = [&](int32_t source) {
    if (source >= 0 && std::find(sources.begin(), sources.end(), source) == sources.end()) sources.push_back(source);
  };
  for (const PlanFaceLine& line : model.Face) {
    if (const auto* file = std::get_if<PlanFlexFile>(&line)) add(file->Source);
    if (const auto* lid = std::get_if<PlanEyelid>(&line)) add(lid->Source);
    if (const auto* file = std::get_if<PlanVcaFile>(&line)) add(file->Source);
  }
  return sources;
}

std::vector<ShapePoint> PointsOf(const smd::SourceShape& shape, const CornerVertices& corners) {
  std::vector<ShapePoint> points;
  points.reserve(shape.Vertices.size());
  for (const smd::ShapeVertex& vertex : shape.Vertices) {
    points.push_back({corners.PlaceOf(vertex.Position), corners.DirectionOf(vertex.Normal)});
  }
  return points;
}

const smd::SourceShape* ShapeAt(const smd::SmdSource& source, int32_t number) {
  const auto found = std::find_if(source.Shapes.begin(), source.Shapes.end(),
                                  [&](const smd::SourceShape& shape) { return shape.Time == number; });
  return found == source.Shapes.end() ? nullptr : &*found;
}

}  // namespace tarnwick::compiler

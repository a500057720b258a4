#include "compiler/face/mesh_flexes.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "compiler/face/half_float.h"

namespace tarnwick::compiler {

namespace {

/// Changes below this, in units and of a normal, are none.
constexpr double LeastChange = 0.001;

/// From this version on all vertices of a shape move at the highest speed.
constexpr int32_t VersionOfWholeSpeeds = 49;

/// Bytes that a vertex of a shape takes, about.
constexpr int64_t VertexCost = 80;

struct Change {
  uint32_t Vertex = 0;  // of the model
  std::array<double, 3> Position{}, Normal{};
  double Length = 0;
  float RestX = 0;
};

std::array<double, 3> Difference(const model::Vec3& a, const model::Vec3& b) {
  return {double{a.x} - double{b.x}, double{a.y} - double{b.y}, double{a.z} - double{b.z}};
}

double LengthOf(const std::array<double, 3>& v) {
  return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

/// A part of 255; what is no number is none of it.
uint8_t ByteOf(double part) {
  return part > 0 ? static_cast<uint8_t>(std::min(255 * part, 255.0)) : uint8_t{0};
}

/// 0 on one side of the face, 255 on the other, a smooth step across the band between.
uint8_t SideOf(float x, float band) {
  const double width = std::max(std::abs(double{band}), 1e-6);
  const double t = std::clamp((double{x} + width) / (2 * width), 0.0, 1.0);
  return ByteOf(t * t * (3 - 2 * t) + 0.5 / 255);
}

}  // namespace

std::optional<ShapeFile> ShapeFile::Open(CompileContext& context, const qc::Place& at, const smd::SmdSource& source,
                                         int32_t restFrame, const SourceUse& mesh, const ModelBones& bones,
                                         const BuiltModel& model, const BuiltMeshes& meshes) {
  ShapeFile file;
  file.m_source = &source;
  file.m_use = std::make_shared<const SourceUse>(ShapeUse(mesh));
  file.m_corners = std::make_shared<const CornerVertices>(source, *file.m_use, bones, 0, context.Options);
  for (const smd::SourceShape& shape : source.Shapes) file.m_shapes.try_emplace(shape.Time, &shape);
  const auto rest = file.m_shapes.find(restFrame);
  if (rest == file.m_shapes.end()) {
    context.Error(
        at, "\"" + source.Path + "\" has no frame " + std::to_string(restFrame) + ", which would hold the mesh at rest",
        core::TroubleKind::Missing);
    return std::nullopt;
  }
  smd::SourceShape ordered = *rest->second;
  if (!context.Spend(
          static_cast<int64_t>(ordered.Vertices.size() + static_cast<size_t>(model.VertexCount)) * VertexCost, at)) {
    return std::nullopt;
  }
  std::stable_sort(ordered.Vertices.begin(), ordered.Vertices.end(),
                   [](const smd::ShapeVertex& a, const smd::ShapeVertex& b) { return a.Number < b.Number; });
  const std::vector<ShapePoint> points = PointsOf(ordered, *file.m_corners);
  for (size_t i = 0; i < points.size(); ++i) {
    file.m_points.push_back({points[i], 0, 0});
    file.m_numbers.try_emplace(ordered.Vertices[i].Number, static_cast<uint32_t>(i));
  }
  ShapeMatch match(points);
  std::vector<std::pair<int32_t, uint32_t>> found;
  for (int32_t i = 0; i < model.VertexCount; ++i) {
    const model::VvdVertex& vertex = meshes.Vertices[static_cast<size_t>(model.FirstVertex) + static_cast<size_t>(i)];
    const int32_t point = match.Find(vertex.Position, vertex.Normal);
    if (point >= 0) found.emplace_back(point, static_cast<uint32_t>(i));
  }
  std::sort(found.begin(), found.end());
  for (const auto& [point, vertex] : found) {
    Point& entry = file.m_points[static_cast<size_t>(point)];
    if (entry.Count++ == 0) entry.First = static_cast<uint32_t>(file.m_vertices.size());
    file.m_vertices.push_back(vertex);
  }
  if (const int64_t lonely = match.CountLonely(); lonely > 0) {
    context.Warning(at,
                    std::to_string(lonely) + (lonely == 1 ? " vertex" : " vertices") + " of \"" + source.Path +
                        (lonely == 1 ? "\" has no vertex of the mesh at its place"
                                     : "\" have no vertex of the mesh at their place"),
                    core::TroubleKind::Mismatch);
  }
  return file;
}

bool ShapeFile::HasFrame(CompileContext& context, int32_t frame, const qc::Place& at) const {
  if (m_shapes.contains(frame)) return true;
  const auto byNumber = [](const auto& a, const auto& b) { return a.first < b.first; };
  const int32_t last = std::max_element(m_shapes.begin(), m_shapes.end(), byNumber)->first;
  context.Error(
      at, "\"" + m_source->Path + "\" has no frame " + std::to_string(frame) + "; its last is " + std::to_string(last),
      core::TroubleKind::Missing);
  return false;
}

bool ShapeFile::AddFlex(CompileContext& context, const FlexShape& flex, const BuiltModel& model,
                        std::vector<std::vector<BuiltFlex>>& flexes) const {
  const smd::SourceShape& shape = *m_shapes.at(flex.Frame);
  // A shape that lists the whole mesh is a copy of it: what stands as at rest is not moved. One that lists a part of it
  // means those that it lists.
  const bool isWhole = shape.Vertices.size() >= m_points.size();
  const std::vector<ShapePoint> places = PointsOf(shape, *m_corners);
  std::vector<Change> changes;
  int64_t unknown = 0;
  for (size_t i = 0; i < places.size(); ++i) {
    const auto number = m_numbers.find(shape.Vertices[i].Number);
    if (number == m_numbers.end()) {
      ++unknown;
      continue;
    }
    const Point& point = m_points[number->second];
    Change change;
    change.Position = Difference(places[i].Position, point.Rest.Position);
    change.Normal = Difference(places[i].Normal, point.Rest.Normal);
    change.Length = LengthOf(change.Position);
    change.RestX = point.Rest.Position.x;
    const double turn = LengthOf(change.Normal);
    const bool isStill = context.Options.KeepValues ? isWhole && change.Length == 0 && turn == 0
                                                    : change.Length < LeastChange && turn < LeastChange;
    if (isStill) continue;
    if (flex.KeptSide) {
      const float edge = *flex.KeptSide;
      if (edge < 0 ? change.RestX < edge : change.RestX > edge) continue;
    }
    if (!context.Spend((int64_t{point.Count} + 1) * VertexCost, flex.At)) return false;
    for (uint32_t k = 0; k < point.Count; ++k) {
      change.Vertex = m_vertices[point.First + k];
      changes.push_back(change);
    }
  }
  if (unknown > 0) {
    context.Warning(flex.At,
                    std::to_string(unknown) + (unknown == 1 ? " vertex" : " vertices") + " of frame " +
                        std::to_string(flex.Frame) + " of \"" + m_source->Path + (unknown == 1 ? "\" is" : "\" are") +
                        " not in the frame of the mesh at rest",
                    core::TroubleKind::Mismatch);
  }
  // Of a vertex that a shape lists twice the last place counts.
  std::stable_sort(changes.begin(), changes.end(),
                   [](const Change& a, const Change& b) { return a.Vertex < b.Vertex; });
  if (!context.Spend(static_cast<int64_t>(model.Meshes.size()) * VertexCost, flex.At)) return false;
  flexes.resize(model.Meshes.size());
  size_t next = 0;
  bool any = false;
  const auto begin = [&](size_t mesh) -> BuiltFlex& {
    BuiltFlex& built = flexes[mesh].emplace_back();
    built.Record.FlexDesc = flex.Descriptor;
    for (size_t k = 0; k < flex.Targets.size(); ++k) built.Record.Targets[k] = flex.Targets[k];
    built.Record.Partner = flex.Partner;
    any = true;
    return built;
  };
  for (size_t mesh = 0; mesh < model.Meshes.size(); ++mesh) {
    const auto first = static_cast<uint32_t>(model.Meshes[mesh].FirstVertex);
    const uint32_t end = first + static_cast<uint32_t>(model.Meshes[mesh].VertexCount);
    if (next >= changes.size() || changes[next].Vertex >= end) continue;
    BuiltFlex& built = begin(mesh);
    double longest = 0;
    for (size_t i = next; i < changes.size() && changes[i].Vertex < end; ++i) {
      longest = std::max(longest, changes[i].Length);
    }
    for (; next < changes.size() && changes[next].Vertex < end; ++next) {
      const Change& change = changes[next];
      if (next + 1 < changes.size() && changes[next + 1].Vertex == change.Vertex) continue;
      model::StudioVertAnim record{};
      record.Vertex = static_cast<int16_t>(static_cast<uint16_t>(change.Vertex - first));
      record.Speed = context.Options.Version >= VersionOfWholeSpeeds ? uint8_t{255}
                     : longest > 0 ? ByteOf(double{flex.Decay} * change.Length / longest)
                                   : uint8_t{0};
      if (flex.Partner != 0) record.Side = SideOf(flex.LeftFirst ? -change.RestX : change.RestX, flex.SideBand);
      record.PositionDelta = EncodeVec48(change.Position[0], change.Position[1], change.Position[2]);
      record.NormalDelta = EncodeVec48(change.Normal[0], change.Normal[1], change.Normal[2]);
      built.VertAnims.push_back(record);
    }
    built.Record.VertAnimCount = static_cast<int32_t>(built.VertAnims.size());
  }
  if (!any && !model.Meshes.empty()) begin(0);
  return true;
}

}  // namespace tarnwick::compiler

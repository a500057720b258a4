#pragma once

#include <cstdint>
#include <vector>

#include "compiler/compile_context.h"
#include "compiler/mesh/corner_vertices.h"
#include "compiler/mesh/shape_match.h"
#include "smd/smd_source.h"

namespace tarnwick::compiler {

/// How a model's shape files are used: as its mesh, but at their own size, which $scale leaves alone.
SourceUse ShapeUse(const SourceUse& mesh);

/// The shape files that a model's face names, each once, in the order in which it names them; places in
/// Script::Sources.
std::vector<int32_t> ShapeSources(const PlanModel& model);

/// The vertices of a shape, in its order, in the model's space. `corners` is of ShapeUse.
std::vector<ShapePoint> PointsOf(const smd::SourceShape& shape, const CornerVertices& corners);

/// The shape of frame `number` of a file: that of its `time` block; nothing if it has none.
const smd::SourceShape* ShapeAt(const smd::SmdSource& source, int32_t number);

}  // namespace tarnwick::compiler

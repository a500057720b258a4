#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "compiler/compile_options.h"
#include "compiler/mesh/mesh_vertex.h"
#include "compiler/plan/compile_plan.h"
#include "compiler/skeleton/model_bones.h"
#include "smd/smd_source.h"

namespace tarnwick::compiler {

/// Makes vertices of the corners of one source, as one statement uses it: scaled, moved and turned into the model's
/// space, with the weights that the model keeps.
class CornerVertices {
 public:
  /// The vertices of level of detail `lod`. The source and `use` stay alive.
  CornerVertices(const smd::SmdSource& source, const SourceUse& use, const ModelBones& bones, size_t lod,
                 const CompileOptions& options);

  MeshVertex Make(const smd::SourceCorner& corner) const;

  /// Where a place of the source lies in the model, and where a direction points.
  model::Vec3 PlaceOf(const smd::Triple& place) const;
  model::Vec3 DirectionOf(const smd::Triple& direction) const;

 private:
  model::Vec3 Turned(model::Vec3 v) const;

  const smd::SmdSource& m_source;
  const SourceUse& m_use;
  const CompileOptions& m_options;
  std::vector<int32_t> m_bones;  // of each node
  bool m_static;
  float m_turnCosine = 1, m_turnSine = 0;  // of $origin
};

}  // namespace tarnwick::compiler

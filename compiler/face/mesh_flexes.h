#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "compiler/compile_context.h"
#include "compiler/face/built_face.h"
#include "compiler/mesh/built_meshes.h"
#include "compiler/mesh/corner_vertices.h"
#include "compiler/mesh/shape_file.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// What one flex is to do with a shape.
struct FlexShape {
  qc::Place At;
  int32_t Frame = 0;
  int32_t Descriptor = 0;
  int32_t Partner = 0;  // of a pair; 0 for none
  std::array<float, 4> Targets = {0, 1, 10, 11};
  float SideBand = 0;             // of a pair: half the width in which it passes from side to side
  bool LeftFirst = false;         // of a pair: the descriptor is that of the left one, the partner the right one
  std::optional<float> KeptSide;  // of a lid: vertices with x below it (above it if it is negative) move
  float Decay = 1;
};

/// One shape file matched to the vertices of one model.
class ShapeFile {
 public:
  /// Vertices move from frame `restFrame`. Nothing, told, if the file has no such frame.
  static std::optional<ShapeFile> Open(CompileContext& context, const qc::Place& at, const smd::SmdSource& source,
                                       int32_t restFrame, const SourceUse& mesh, const ModelBones& bones,
                                       const BuiltModel& model, const BuiltMeshes& meshes);

  /// Whether the file has that frame; that it has not is told.
  bool HasFrame(CompileContext& context, int32_t frame, const qc::Place& at) const;

  /// Adds the flex, whose frame the file has, to each mesh of the model that it moves; to the first, without vertices,
  /// if there is none. False, told, if it asks for too much.
  bool AddFlex(CompileContext& context, const FlexShape& flex, const BuiltModel& model,
               std::vector<std::vector<BuiltFlex>>& flexes) const;

 private:
  struct Point {
    ShapePoint Rest;
    uint32_t First = 0, Count = 0;  // of m_vertices
  };

  const smd::SmdSource* m_source = nullptr;
  std::shared_ptr<const SourceUse> m_use;
  std::shared_ptr<const CornerVertices> m_corners;
  std::unordered_map<int32_t, const smd::SourceShape*> m_shapes;  // by frame
  std::unordered_map<int32_t, uint32_t> m_numbers;                // a number of the file: its point
  std::vector<Point> m_points;
  std::vector<uint32_t> m_vertices;  // of the model, point by point
};

}  // namespace tarnwick::compiler

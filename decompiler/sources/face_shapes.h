#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "decompiler/job/job_context.h"
#include "model/model_flexes.h"

namespace tarnwick::decompiler::sources {

/// A shape of the face: the flexes of one descriptor, one a mesh, that come and go at the same weights.
struct FaceShape {
  size_t Descriptor = 0;
  int32_t Partner = 0;                // descriptor of the other side, 0 for none
  std::array<float, 4> Targets = {};  // weights at which it begins, is whole, begins to end, has ended
  std::vector<MeshFlex> Flexes;
};

/// The shapes of a model.
struct FaceShapes {
  ModelFlexes Flexes;
  std::vector<FaceShape> Shapes;  // in the order of their descriptors
};

/// Gathers the shapes of `model`. Nothing, told, if its tables are damaged.
[[nodiscard]] std::optional<FaceShapes> GatherFaceShapes(JobContext& job, const core::Record<StudioModel>& model,
                                                         size_t descriptorCount);

/// How wide the band is, to either side of the middle plane, in which a pair's shape goes over from one flex to the
/// other.
struct PairSplit {
  float Width = 1;
  bool IsMirrored = false;  // the first flex is that of the side where x is above 0
  bool IsExact = true;      // every vertex's side follows from the width
};

/// Finds the split of a shape with a partner from the sides that its vertices have: 0 to 255 in a smooth step in x.
[[nodiscard]] PairSplit FindPairSplit(JobContext& job, const FaceShapes& shapes, const FaceShape& shape);

/// How far beyond the middle plane, where x is above 0 (or below, with `mirrored`), the farthest vertex lies that a
/// shape moves; 0 if none lies there.
[[nodiscard]] float ReachAcross(JobContext& job, const FaceShapes& shapes, const FaceShape& shape, bool mirrored);

/// Finds the factor of a shape's speeds: a vertex is as fast as it moves far beside the farthest of its mesh, times
/// that. 1 where the speeds do not tell.
[[nodiscard]] float FindDecay(JobContext& job, const FaceShapes& shapes, const FaceShape& shape);

/// Counts what the shapes hold that the lines of a flexfile block and a VTA file do not say: wrinkles, and speeds that
/// do not follow from the lengths of the moves.
void CountLostOfShapes(JobContext& job, const FaceShapes& shapes);

}  // namespace tarnwick::decompiler::sources

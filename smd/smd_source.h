#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "smd/smd_values.h"

namespace tarnwick::smd {

/// A bone of a source as its `nodes` block names it. `Parent` is its place among the nodes, -1 for a root; a parent may
/// stand behind its child.
struct SourceNode {
  std::string Name;
  int32_t Parent = -1;
};

/// Where a bone stands in its parent's space, in one frame.
struct SourcePose {
  Triple Position;
  Triple Rotation;
};

/// A corner of a triangle. Its links are `LinkCount` entries of `SmdSource::Links` from `FirstLink` on, bones by their
/// place among the nodes; without any the corner follows `Bone` alone.
struct SourceCorner {
  Triple Position;
  Triple Normal;
  float U = 0, V = 0;  // V rises upwards
  int32_t Bone = 0;
  uint32_t FirstLink = 0;
  uint32_t LinkCount = 0;
};

/// A vertex of a shape: its number in the file, where it stands and its normal there.
struct ShapeVertex {
  int32_t Number = 0;
  Triple Position;
  Triple Normal;
};

/// A `time` block of `vertexanimation`.
struct SourceShape {
  int32_t Time = 0;
  std::vector<ShapeVertex> Vertices;
};

/// What is wrong with a source, by line. A file with an error cannot be compiled.
struct SourceMessage {
  int64_t Line = 0;  // from 1
  bool IsError = false;
  std::string Text;  // one sentence, without place, line end or full stop
};

/// An SMD or VTA file as read.
struct SmdSource {
  std::string Path;
  std::vector<SourceNode> Nodes;
  int32_t FrameCount = 0;
  std::vector<SourcePose> Poses;   // Nodes.size() for each frame, frame after frame; what a frame leaves out is held
  std::vector<uint8_t> NodePosed;  // a node: whether any frame places it
  std::vector<std::string> Materials;      // as typed, in the order of their first use
  std::vector<int32_t> TriangleMaterials;  // a triangle: its place in Materials
  std::vector<SourceCorner> Corners;       // three a triangle
  std::vector<Link> Links;
  std::vector<SourceShape> Shapes;  // of a VTA file

  const SourcePose& PoseOf(int32_t frame, size_t node) const {
    return Poses[static_cast<size_t>(frame) * Nodes.size() + node];
  }
};

}  // namespace tarnwick::smd

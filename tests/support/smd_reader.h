#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::tests {

struct SmdNode {
  std::string Name;
  int Parent = -1;
};

/// A bone's position x, y, z and rotation x, y, z.
using SmdPose = std::array<double, 6>;

struct SmdWeight {
  int Bone = 0;
  double Weight = 0;
};

struct SmdVertex {
  int Bone = 0;
  std::array<double, 8> Values{};  // position, normal, u, v
  std::vector<SmdWeight> Weights;
};

struct SmdTriangle {
  std::string Material;
  std::array<SmdVertex, 3> Corners;
};

struct VtaVertex {
  int Vertex = 0;
  std::array<double, 6> Values{};  // position, normal
};

struct VtaFrame {
  int Time = 0;
  std::vector<VtaVertex> Vertices;
};

/// An SMD or VTA file as the compile tools take it.
struct SmdFile {
  std::vector<SmdNode> Nodes;
  std::vector<std::vector<SmdPose>> Frames;  // a pose for each node
  std::vector<SmdTriangle> Triangles;
  std::vector<VtaFrame> VertexFrames;
  std::string Problem;  // empty for a sound file, else the number of the first bad line and what it should be
};

/// Reads the text of a whole file, strictly: sections in order and ended, numbers that are numbers, nodes and frames
/// numbered from 0 on, a pose for each bone, bones and vertices that exist, nothing behind the end.
SmdFile ReadSmd(std::string_view text);

}  // namespace tarnwick::tests

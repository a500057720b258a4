#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace tarnwick::smd {

/// Three numbers of a source file: a point, a direction, or a rotation in radians about X, Y and Z.
struct Triple {
  float X = 0, Y = 0, Z = 0;
};

/// A bone of a source file and where it rests, in its parent's space.
struct Node {
  std::string_view Name;
  int32_t Parent = -1;  // its number; -1 for a root
  Triple Position;
  Triple Rotation;
};

/// How much of a vertex follows a bone.
struct Link {
  int32_t Bone = 0;
  float Weight = 0;
};

/// One corner of a triangle.
struct Vertex {
  int32_t Bone = 0;  // the one that moves it where links are not read
  Triple Position;
  Triple Normal;
  float U = 0, V = 0;  // V rises upwards
  int32_t LinkCount = 0;
  std::array<Link, 3> Links = {};
};

}  // namespace tarnwick::smd

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/bone_math_types.h"

namespace tarnwick::tests {

// What becomes plain statements of the QC script.

struct PoseParameterDescription {
  std::string Name = "move_yaw";
  float Start = -180;
  float End = 180;
  float Wrap = 0;
};

struct HitboxDescription {
  int32_t Bone = 0;
  int32_t Group = 0;
  model::Vec3 Minimum = {-1, -1, -1};
  model::Vec3 Maximum = {1, 1, 1};
};

struct HitboxSetDescription {
  std::string Name = "default";
  std::vector<HitboxDescription> Hitboxes = {HitboxDescription{}};
};

struct AttachmentDescription {
  std::string Name = "muzzle";
  int32_t Bone = 0;
  model::Matrix3x4 Placement = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}};
};

struct IkLinkDescription {
  int32_t Bone = 0;
  model::Vec3 KneeDirection = {0, 0, 0};
};

struct IkChainDescription {
  std::string Name = "rfoot";
  std::vector<IkLinkDescription> Links = {};
};

}  // namespace tarnwick::tests

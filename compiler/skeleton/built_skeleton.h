#pragma once

#include <string>
#include <vector>

#include "model/procedural_records.h"
#include "model/script_records.h"

namespace tarnwick::compiler {

struct BuiltAttachment {
  std::string Name;
  int32_t Bone = 0;
  model::Matrix3x4 Placement = {};
};
struct BuiltHitbox {
  int32_t Bone = 0;
  int32_t Group = 0;
  model::Vec3 Minimum = {0, 0, 0}, Maximum = {0, 0, 0};
};
struct BuiltHitboxSet {
  std::string Name;
  std::vector<BuiltHitbox> Boxes;
};
struct BuiltIkChain {
  std::string Name;
  std::vector<model::StudioIkLink> Links;
};
struct BuiltDrivenBone {
  int32_t Bone = 0;
  int32_t Driver = 0;
  std::vector<model::StudioTrigger> Triggers;
};
struct BuiltJiggleBone {
  int32_t Bone = 0;
  model::StudioJiggleBone Record = {};
};

/// What hangs on the bones.
struct BuiltSkeleton {
  std::vector<BuiltAttachment> Attachments;
  std::vector<BuiltHitboxSet> HitboxSets;
  std::vector<BuiltIkChain> IkChains;
  std::vector<model::StudioIkLock> AutoplayLocks;
  std::vector<BuiltDrivenBone> DrivenBones;  // by rising bone
  std::vector<BuiltJiggleBone> JiggleBones;  // likewise
};

}  // namespace tarnwick::compiler

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "model/bone_math_types.h"
#include "model/rigid_transform.h"
#include "smd/smd_source.h"

namespace tarnwick::compiler {

inline constexpr size_t MostLods = 8;

/// A bone of the model.
struct ModelBone {
  std::string Name;
  int32_t Parent = -1;  // stands ahead of its children
  model::Vec3 Position = {0, 0, 0};
  model::EulerAngles Angles = {0, 0, 0};           // radians
  model::RigidTransform ToModel;                   // at rest
  std::optional<model::RigidTransform> Realigned;  // what its definition adds to the bone as sources have it
  uint32_t Flags = 0;                              // BoneFlag bits of the model's records
  int32_t PhysicsSolid = 0;
};

/// The bones that the model keeps, in the order of its file, and how names lead to them. A static model has the one
/// bone `static_prop`, and every name leads to it.
class ModelBones {
 public:
  std::vector<ModelBone> Bones;
  bool Static = false;

  /// The bone to which a name of the sources or of the script leads: the bone itself, or, where it was dropped or
  /// collapsed, the one that took its place. -1 if there is no such bone. Exact first, then without regard to case.
  int32_t Find(std::string_view name) const;
  /// The bone of that very name; -1 where it was dropped or never was.
  int32_t Named(std::string_view name) const;
  /// The same as `Find` for every node of a source. A node that leads nowhere (which a kept mesh has not) gets bone 0.
  std::vector<int32_t> OfNodes(const smd::SmdSource& source) const;
  /// The bone that stands for `bone` at a level of detail (replacebone, bonetreecollapse).
  int32_t AtLod(int32_t bone, size_t lod) const {
    return lod < LodBones.size() && !LodBones[lod].empty() ? LodBones[lod][static_cast<size_t>(bone)] : bone;
  }

  /// How a dropped or collapsed bone stands at rest in the bone that `Find` gives for it; nothing for a bone that is
  /// kept.
  const model::RigidTransform* PlaceOfDropped(std::string_view name) const;

  /// Sets `flag` for the bone and all of its parents.
  void Mark(int32_t bone, uint32_t flag);
  /// Marks a bone that a vertex of level `lod` has a weight on.
  void MarkVertex(int32_t bone, size_t lod);

  /// Names as they are looked up: a name, and the bone it leads to.
  void AddName(std::string_view name, int32_t bone);
  /// The same of a bone that is not kept.
  void AddDropped(std::string_view name, int32_t bone, const model::RigidTransform& place);
  /// Another name that sources have for a bone.
  void Rename(std::string_view from, int32_t bone);

  std::vector<std::vector<int32_t>> LodBones;  // a level: a bone's stand-in; empty for none

 private:
  std::unordered_map<std::string, int32_t> m_names;
  std::unordered_map<std::string, int32_t> m_lowerNames;
  std::unordered_set<std::string> m_renamed;
  std::unordered_map<std::string, model::RigidTransform> m_dropped;
};

}  // namespace tarnwick::compiler

#include "compiler/skeleton/model_bones.h"

#include <algorithm>

#include "core/paths.h"
#include "model/studio_records.h"

namespace tarnwick::compiler {

int32_t ModelBones::Find(std::string_view name) const {
  if (Static) return 0;
  const auto exact = m_names.find(std::string(name));
  if (exact != m_names.end()) return exact->second;
  const auto lower = m_lowerNames.find(core::LowerAscii(name));
  return lower != m_lowerNames.end() ? lower->second : -1;
}

int32_t ModelBones::Named(std::string_view name) const {
  const int32_t bone = Find(name);
  if (bone < 0 || Static) return bone;
  const std::string& own = Bones[static_cast<size_t>(bone)].Name;
  if (core::EqualIgnoringCase(own, name)) return bone;
  return m_renamed.contains(core::LowerAscii(name)) ? bone : -1;
}

const model::RigidTransform* ModelBones::PlaceOfDropped(std::string_view name) const {
  const auto dropped = m_dropped.find(core::LowerAscii(name));
  return Static || dropped == m_dropped.end() ? nullptr : &dropped->second;
}

std::vector<int32_t> ModelBones::OfNodes(const smd::SmdSource& source) const {
  std::vector<int32_t> bones;
  bones.reserve(source.Nodes.size());
  for (const smd::SourceNode& node : source.Nodes) bones.push_back(std::max(Find(node.Name), 0));
  return bones;
}

void ModelBones::Mark(int32_t bone, uint32_t flag) {
  while (bone >= 0 && (Bones[static_cast<size_t>(bone)].Flags & flag) == 0) {
    Bones[static_cast<size_t>(bone)].Flags |= flag;
    bone = Bones[static_cast<size_t>(bone)].Parent;
  }
}

void ModelBones::MarkVertex(int32_t bone, size_t lod) {
  Mark(bone, model::BoneFlagVertexLod0 << lod);
}

void ModelBones::Rename(std::string_view from, int32_t bone) {
  AddName(from, bone);
  m_renamed.insert(core::LowerAscii(from));
}

void ModelBones::AddDropped(std::string_view name, int32_t bone, const model::RigidTransform& place) {
  AddName(name, bone);
  m_dropped.try_emplace(core::LowerAscii(name), place);
}

void ModelBones::AddName(std::string_view name, int32_t bone) {
  m_names.try_emplace(std::string(name), bone);
  m_lowerNames.try_emplace(core::LowerAscii(name), bone);
}

}  // namespace tarnwick::compiler

#include "support/plain_pose.h"

#include "model/pose_decoder.h"

namespace tarnwick::tests {

using namespace model;

namespace {

/// The address that `block` and `offset` of `animation`, or of one of its sections, mean; nothing without data.
std::optional<AnimData> Resolve(ModelReader& reader, const core::Record<StudioAnimDesc>& animation, int32_t block,
                                int32_t offset) {
  if (block == -1) return std::nullopt;
  if (block == 0) return AnimData{&reader.Model.Mdl, animation.Offset() + offset};
  const auto base = GetAnimBlockBase(reader, block);
  if (!base) return std::nullopt;
  return AnimData{base->File, base->Offset + offset};
}

std::optional<core::Record<StudioAnimSection>> SectionAt(ModelReader& reader,
                                                         const core::Record<StudioAnimDesc>& animation,
                                                         int64_t section) {
  return reader.Model.View().At<StudioAnimSection>(animation.Offset() + animation->SectionOffset +
                                                   section * int64_t{sizeof(StudioAnimSection)});
}

}  // namespace

std::optional<AnimData> FindAnimData(ModelReader& reader, const core::Record<StudioAnimDesc>& animation,
                                     int32_t& frame) {
  if (animation->SectionFrames == 0) return Resolve(reader, animation, animation->Block, animation->DataOffset);
  int64_t section = SectionOfFrame(*animation, frame);
  auto entry = SectionAt(reader, animation, section);
  if (!entry || (*entry)->Block == -1) return std::nullopt;
  auto data = Resolve(reader, animation, (*entry)->Block, (*entry)->DataOffset);
  while (!data && section > 0) {
    entry = SectionAt(reader, animation, --section);
    if (!entry) return std::nullopt;
    data = Resolve(reader, animation, (*entry)->Block, (*entry)->DataOffset);
    if (data) frame = animation->SectionFrames - 1;
  }
  return data;
}

void DecodePoseAtFrame(ModelReader& reader, const core::RecordArray<StudioBone>& bones,
                       const core::Record<StudioAnimDesc>& animation, int32_t frame, std::span<Vec3> positions,
                       std::span<Quat> rotations) {
  const bool delta = (animation->Flags & AnimFlagDelta) != 0;
  int32_t local = frame;
  const auto data = FindAnimData(reader, animation, local);
  auto anim = data ? AnimRecordAt(*data) : std::nullopt;
  for (int64_t b = 0; b < bones.Count(); ++b) {
    const StudioBone& bone = *bones[b];
    const auto at = static_cast<size_t>(b);
    if (anim && (*anim)->Bone == b) {
      rotations[at] = DecodeBoneRotation(local, bone, *anim);
      positions[at] = DecodeBonePosition(local, bone, *anim);
      anim = NextAnimRecord(*anim);
    } else {
      rotations[at] = DefaultRotation(bone, delta);
      positions[at] = DefaultPosition(bone, delta);
    }
  }
}

}  // namespace tarnwick::tests

#include "model/animation_data.h"

namespace tarnwick::model {

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

int64_t AnimRecord::RawPosition() const {
  int64_t at = Payload();
  if ((Anim->Flags & AnimRawRotation48) != 0) at += int64_t{sizeof(PackedQuat48)};
  if ((Anim->Flags & AnimRawRotation64) != 0) at += int64_t{sizeof(PackedQuat64)};
  return at;
}

int64_t AnimRecord::PositionRuns() const {
  return (Anim->Flags & AnimRunRotation) != 0 ? Payload() + int64_t{sizeof(StudioRunOffsets)} : Payload();
}

std::optional<RunStream> RunsOfAxis(const core::ImageView& image, int64_t triple, int axis) {
  const auto offsets = image.At<StudioRunOffsets>(triple);
  if (!offsets || (*offsets)->Axis[axis] < 1) return std::nullopt;
  return RunStream{image, triple + (*offsets)->Axis[axis]};
}

std::optional<AnimRecord> AnimRecordAt(const AnimData& data) {
  const auto record = data.View().At<StudioAnim>(data.Offset);
  if (!record) return std::nullopt;
  return AnimRecord{data.View(), *record};
}

std::optional<AnimRecord> NextAnimRecord(const AnimRecord& record) {
  if (record->NextOffset == 0) return std::nullopt;
  const auto next = record.Image.At<StudioAnim>(record.Anim.Offset() + record->NextOffset);
  if (!next) return std::nullopt;
  return AnimRecord{record.Image, *next};
}

int64_t SectionOfFrame(const StudioAnimDesc& animation, int32_t& frame) {
  const int32_t length = animation.SectionFrames;
  if (length <= 0) return 0;
  if (animation.FrameCount > length && frame == animation.FrameCount - 1) {
    frame = 0;
    return int64_t{animation.FrameCount / length} + 1;
  }
  const int32_t section = frame / length;
  frame -= section * length;
  return section;
}

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

}  // namespace tarnwick::model

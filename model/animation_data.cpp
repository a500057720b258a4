#include "model/animation_data.h"

#include <algorithm>

namespace tarnwick::model {

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

std::vector<StudioAnimSection> StoredPieces(ModelReader& reader, const core::Record<StudioAnimDesc>& animation) {
  if (animation->SectionFrames <= 0) return {{animation->Block, animation->DataOffset}};
  int32_t last = std::max(+animation->FrameCount, 1) - 1;
  const int64_t count = SectionOfFrame(*animation, last) + 1;
  const auto table = reader.Model.View().Array<StudioAnimSection>(animation.Offset() + animation->SectionOffset, count);
  if (!table || !reader.Spend(count * RecordCost)) return {};
  std::vector<StudioAnimSection> pieces;
  pieces.reserve(static_cast<size_t>(count));
  for (const auto section : *table) pieces.push_back(*section);
  return pieces;
}

std::optional<core::RecordArray<StudioIkRule>> IkRulesOf(ModelReader& reader,
                                                         const core::Record<StudioAnimDesc>& animation) {
  if (animation->Block <= 0) {
    if (animation->IkRuleOffset == 0) return std::nullopt;
    return reader.Table<StudioIkRule>("IK rule table", animation.Offset() + animation->IkRuleOffset,
                                      animation->IkRuleCount);
  }
  const auto base = GetAnimBlockBase(reader, animation->Block);
  if (!base) return std::nullopt;
  return base->View().Array<StudioIkRule>(base->Offset + animation->BlockIkRuleOffset, animation->IkRuleCount);
}

}  // namespace tarnwick::model

#include "model/animation_data.h"

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

}  // namespace tarnwick::model

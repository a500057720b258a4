#include "view/scene/model_frames.h"

#include <algorithm>
#include <cmath>

#include "model/pose_decoder.h"
#include "view/scene/model_values.h"

namespace tarnwick::view {

namespace {

/// Animations that stay open. A player holds some hundred bytes a bone.
constexpr size_t MostOpen = 32;

BonePose PoseOf(const model::Quat& rotation, const model::Vec3& position) {
  return {Finite(rotation), Finite(position)};
}

}  // namespace

ModelFrames::Open& ModelFrames::OpenOf(int32_t animation) {
  const auto found =
      std::find_if(m_open.begin(), m_open.end(), [&](const Open& one) { return one.Animation == animation; });
  if (found != m_open.end()) {
    m_open.splice(m_open.begin(), m_open, found);
    return m_open.front();
  }
  if (m_open.size() >= MostOpen) m_open.pop_back();
  Open& open = m_open.emplace_front();
  open.Animation = animation;
  const auto header = m_reader.Model.Header();
  const auto record = m_reader.Model.View().At<model::StudioAnimDesc>(
      header->AnimOffset + int64_t{animation} * int64_t{sizeof(model::StudioAnimDesc)});
  const model::Skeleton* skeleton = model::GetSkeleton(m_reader);
  if (!record || skeleton == nullptr) return open;
  open.IsDelta = ((*record)->Flags & model::AnimFlagDelta) != 0;
  if ((*record)->FrameCount < 1) return open;
  open.Checked = model::CheckAnimation(m_reader, *record, "");
  if (open.Checked) open.Player = std::make_unique<model::PosePlayer>(skeleton->Bones, *open.Checked);
  return open;
}

void ModelFrames::Read(int32_t animation, int32_t first, std::span<BonePose> poses) {
  const model::Skeleton* skeleton = model::GetSkeleton(m_reader);
  if (skeleton == nullptr || skeleton->Count() == 0) return;
  const auto bones = static_cast<size_t>(skeleton->Count());
  const Open& open = OpenOf(animation);
  for (size_t frame = 0; (frame + 1) * bones <= poses.size(); ++frame) {
    const std::span<BonePose> row = poses.subspan(frame * bones, bones);
    if (open.Player == nullptr) {
      for (size_t b = 0; b < bones; ++b) {
        const model::StudioBone& bone = *skeleton->Bones[static_cast<int64_t>(b)];
        row[b] = PoseOf(model::DefaultRotation(bone, open.IsDelta), model::DefaultPosition(bone, open.IsDelta));
      }
    } else if (!open.Player->GoTo(first + static_cast<int32_t>(frame)) && frame > 0) {
      std::copy_n(row.data() - bones, bones, row.data());
    } else {
      for (size_t b = 0; b < bones; ++b) row[b] = PoseOf(open.Player->Rotations()[b], open.Player->Positions()[b]);
    }
  }
}

}  // namespace tarnwick::view

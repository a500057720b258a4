#include "decompiler/pose_player.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "decompiler/bone_math.h"
#include "decompiler/pose_decoder.h"
#include "decompiler/quick_rotations.h"

namespace tarnwick::decompiler {

PosePlayer::PosePlayer(const core::RecordArray<StudioBone>& bones, const CheckedAnimation& animation)
    : m_bones(bones),
      m_animation(animation),
      m_positions(static_cast<size_t>(bones.Count())),
      m_rotations(static_cast<size_t>(bones.Count())),
      m_changes(static_cast<size_t>(bones.Count())) {}

bool PosePlayer::GoTo(int32_t frame) {
  const auto data = m_animation.Find(frame);
  const bool first = m_frame < 0;
  if (m_changed) std::fill(m_changes.begin(), m_changes.end(), uint8_t{0});
  m_changed = false;
  if (first || data != m_data || frame < m_frame) {
    if (first) std::fill(m_changes.begin(), m_changes.end(), uint8_t{RotationBit | PositionBit});
    Open(data, frame);
  } else if (frame >= m_heldUntil) {
    Advance(frame);
  }
  m_frame = frame;
  m_changed |= first;
  return m_changed;
}

void PosePlayer::Open(const std::optional<AnimData>& data, int32_t frame) {
  m_data = data;
  m_image = data ? data->View() : core::ImageView();
  m_tracks.clear();
  m_heldUntil = std::numeric_limits<int32_t>::max();
  const bool delta = m_animation.IsDelta();
  auto anim = data ? AnimRecordAt(*data) : std::nullopt;
  for (int64_t b = 0; b < m_bones.Count(); ++b) {
    if (anim && (*anim)->Bone == b) {
      OpenBone(*anim, frame);
      anim = NextAnimRecord(*anim);
    } else {
      SetRotation(static_cast<size_t>(b), DefaultRotation(*m_bones[b], delta));
      SetPosition(static_cast<size_t>(b), DefaultPosition(*m_bones[b], delta));
    }
  }
}

void PosePlayer::OpenBone(const AnimRecord& anim, int32_t frame) {
  const uint8_t flags = anim->Flags;
  const size_t bone = anim->Bone;
  if ((flags & (AnimRawRotation48 | AnimRawRotation64)) == 0 && (flags & AnimRunRotation) != 0) {
    AddTrack(anim, anim.Payload(), true, frame);
  } else {
    SetRotation(bone, DecodeBoneRotation(frame, *m_bones[anim->Bone], anim));
  }
  if ((flags & AnimRawPosition) == 0 && (flags & AnimRunPosition) != 0) {
    AddTrack(anim, anim.PositionRuns(), false, frame);
  } else {
    SetPosition(bone, DecodeBonePosition(frame, *m_bones[anim->Bone], anim));
  }
}

void PosePlayer::AddTrack(const AnimRecord& anim, int64_t triple, bool isRotation, int32_t frame) {
  RunTrack& track = m_tracks.emplace_back();
  track.Bone = anim->Bone;
  track.IsRotation = isRotation;
  track.IsDelta = (anim->Flags & AnimIsDelta) != 0;
  for (int axis = 0; axis < 3; ++axis) {
    if (const auto stream = RunsOfAxis(m_image, triple, axis)) track.Cursors[axis] = RunCursor(stream->Offset);
  }
  Read(track, frame);
  Store(track);
}

void PosePlayer::Advance(int32_t frame) {
  m_heldUntil = std::numeric_limits<int32_t>::max();
  for (RunTrack& track : m_tracks) {
    if (frame >= track.HeldUntil && Read(track, frame)) {
      Store(track);
    } else {
      m_heldUntil = std::min(m_heldUntil, track.HeldUntil);
    }
  }
}

bool PosePlayer::Read(RunTrack& track, int32_t frame) {
  bool changed = false;
  track.HeldUntil = std::numeric_limits<int32_t>::max();
  for (int axis = 0; axis < 3; ++axis) {
    const int32_t value = track.Cursors[axis].At(m_image, frame);
    changed |= value != track.Values[axis];
    track.Values[axis] = value;
    track.HeldUntil = std::min(track.HeldUntil, track.Cursors[axis].HeldUntil(frame));
  }
  m_heldUntil = std::min(m_heldUntil, track.HeldUntil);
  return changed;
}

void PosePlayer::Store(const RunTrack& track) {
  const StudioBone& bone = *m_bones[track.Bone];
  const Vec3& scale = track.IsRotation ? bone.RotationScale : bone.PositionScale;
  const Vec3 value{static_cast<float>(track.Values[0]) * scale.x, static_cast<float>(track.Values[1]) * scale.y,
                   static_cast<float>(track.Values[2]) * scale.z};
  const auto at = static_cast<size_t>(track.Bone);
  if (!track.IsRotation) {
    SetPosition(at, track.IsDelta
                        ? value
                        : Vec3{value.x + bone.Position.x, value.y + bone.Position.y, value.z + bone.Position.z});
    return;
  }
  EulerAngles angles{value.x, value.y, value.z};
  if (!track.IsDelta) angles = {angles.x + bone.Angles.x, angles.y + bone.Angles.y, angles.z + bone.Angles.z};
  Quat rotation;
  QuickEulerToQuat(angles, rotation);
  if (!track.IsDelta && (bone.Flags & BoneFlagFixedAlignment) != 0) AlignQuat(bone.Alignment, rotation, rotation);
  SetRotation(at, rotation);
}

// Compared bit by bit: a not-a-number equals itself, and zeros of both signs, which print differently, do not.

void PosePlayer::SetRotation(size_t bone, const Quat& rotation) {
  if (std::memcmp(&m_rotations[bone], &rotation, sizeof rotation) == 0) return;
  m_rotations[bone] = rotation;
  m_changes[bone] |= RotationBit;
  m_changed = true;
}

void PosePlayer::SetPosition(size_t bone, const Vec3& position) {
  if (std::memcmp(&m_positions[bone], &position, sizeof position) == 0) return;
  m_positions[bone] = position;
  m_changes[bone] |= PositionBit;
  m_changed = true;
}

}  // namespace tarnwick::decompiler

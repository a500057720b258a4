#include "model/pose_player.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>

#include "core/same_bytes.h"
#include "core/vector_code.h"
#include "model/bone_math.h"
#include "model/pose_decoder.h"
#include "model/quick_rotations.h"

namespace tarnwick::model {

// Compared bit by bit: a not-a-number equals itself, and zeros of both signs, which print differently, do not.

TARNWICK_INLINE void PosePlayer::SetRotation(size_t bone, const Quat& rotation) {
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
  if (core::HasSameBytes(m_rotations[bone], rotation)) return;
  m_rotations[bone] = rotation;
  m_changes[bone] |= RotationBit;
  m_changed = true;
}

void PosePlayer::SetPosition(size_t bone, const Vec3& position) {
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
  if (core::HasSameBytes(m_positions[bone], position)) return;
  m_positions[bone] = position;
  m_changes[bone] |= PositionBit;
  m_changed = true;
}

TARNWICK_INLINE void PosePlayer::Take(RunTrack& track, const Stored& stored) {
  track.Last = stored;
  std::array<float, 4> values;
  for (size_t axis = 0; axis < values.size(); ++axis) {
    values[axis] = static_cast<float>(stored[axis]) * track.Scales[axis] + track.Bases[axis];
  }
  if (track.IsRotation) {
    // A bone has one track of rotations, so there is room for all.
    m_turning[m_turningCount] = {track.Bone, track.IsAligned};
    m_angles[m_turningCount++] = {values[0], values[1], values[2]};
  } else {
    SetPosition(static_cast<size_t>(track.Bone), {values[0], values[1], values[2]});
  }
}

PosePlayer::PosePlayer(const core::RecordArray<StudioBone>& bones, const CheckedAnimation& animation)
    : m_bones(bones),
      m_animation(animation),
      m_positions(static_cast<size_t>(bones.Count())),
      m_rotations(static_cast<size_t>(bones.Count())),
      m_changes(static_cast<size_t>(bones.Count())),
      m_running(static_cast<size_t>(bones.Count())),
      m_turning(m_positions.size()),
      m_angles(m_positions.size()),
      m_turned(m_positions.size()) {
  m_tracks.reserve(2 * m_positions.size());
}

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
  TurnAngles();
  m_frame = frame;
  m_changed |= first;
  return m_changed;
}

void PosePlayer::Open(const std::optional<AnimData>& data, int32_t frame) {
  m_data = data;
  m_image = data ? data->View() : core::ImageView();
  m_tracks.clear();
  std::fill(m_running.begin(), m_running.end(), uint8_t{0});
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
  const bool packed = (flags & (AnimRawRotation48 | AnimRawRotation64)) != 0;
  if (!packed && (flags & AnimRunRotation) != 0) {
    AddTrack(anim, anim.Payload(), true, frame);
  } else {
    if (packed) m_running[bone] |= PackedBit;
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
  m_running[anim->Bone] |= isRotation ? RotationBit : PositionBit;
  const bool isDelta = (anim->Flags & AnimIsDelta) != 0;
  const StudioBone& bone = *m_bones[track.Bone];
  track.IsAligned = !isDelta && (bone.Flags & BoneFlagFixedAlignment) != 0;
  const Vec3 scale = isRotation ? bone.RotationScale : bone.PositionScale;
  const Vec3 rest = isRotation ? Vec3{bone.Angles.x, bone.Angles.y, bone.Angles.z} : bone.Position;
  const Vec3 base = isDelta ? Vec3{-0.0f, -0.0f, -0.0f} : rest;
  track.Scales = {scale.x, scale.y, scale.z};
  track.Bases = {base.x, base.y, base.z};
  for (size_t axis = 0; axis < 3; ++axis) {
    const auto stream = RunsOfAxis(m_image, triple, static_cast<int>(axis));
    if (stream) track.Cursors[axis] = RunCursor(stream->Offset);
  }
  Read(track, frame, true);
}

void PosePlayer::Advance(int32_t frame) {
  m_heldUntil = std::numeric_limits<int32_t>::max();
  for (RunTrack& track : m_tracks) {
    if (frame >= track.HeldUntil) {
      Read(track, frame, false);
    } else {
      m_heldUntil = std::min(m_heldUntil, track.HeldUntil);
    }
  }
}

void PosePlayer::FillBlock(RunTrack& track, int32_t frame) {
  track.BlockFirst = frame;
  const int32_t last = frame + BlockFrames - 1;
  track.HeldUntil = std::numeric_limits<int32_t>::max();
  for (size_t axis = 0; axis < 3; ++axis) {
    std::array<int16_t, BlockFrames> values;
    track.Cursors[axis].Fill(m_image, frame, values);
    track.HeldUntil = std::min(track.HeldUntil, track.Cursors[axis].HeldUntil(last));
    for (size_t i = 0; i < values.size(); ++i) track.Block[i][axis] = values[i];
  }
  if (!std::equal(track.Block.begin() + 1, track.Block.end(), track.Block.begin())) track.HeldUntil = frame + 1;
}

void PosePlayer::Read(RunTrack& track, int32_t frame, bool first) {
  if (first || frame - track.BlockFirst >= BlockFrames) {
    FillBlock(track, frame);
  } else {
    track.HeldUntil = frame + 1;
  }
  m_heldUntil = std::min(m_heldUntil, track.HeldUntil);
  const Stored& stored = track.Block[static_cast<size_t>(frame - track.BlockFirst)];
  if (first || std::bit_cast<uint64_t>(stored) != std::bit_cast<uint64_t>(track.Last)) Take(track, stored);
}

void PosePlayer::TurnAngles() {
  const size_t count = std::exchange(m_turningCount, 0);
  const Turn* const turning = std::span(m_turning).first(count).data();
  const std::span<Quat> turned = std::span(m_turned).first(count);
  QuickEulerToQuat(std::span(m_angles).first(count), turned);
  for (size_t i = 0; i < count; ++i) {
    Quat rotation = turned.data()[i];
    if (turning[i].IsAligned) AlignQuat(m_bones[turning[i].Bone]->Alignment, rotation, rotation);
    SetRotation(static_cast<size_t>(turning[i].Bone), rotation);
  }
}

}  // namespace tarnwick::model

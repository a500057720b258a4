#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "decompiler/animation_check.h"
#include "decompiler/run_values.h"

namespace tarnwick::decompiler {

/// Plays a checked animation forward: the poses of DecodePoseAtFrame to the last bit, in time that grows with what
/// really changes from frame to frame. Values that stand still are decoded once, and each run is looked at once.
class PosePlayer {
 public:
  /// The bones and the animation's files must outlive the player.
  PosePlayer(const core::RecordArray<StudioBone>& bones, const CheckedAnimation& animation);

  /// Goes to `frame`, which is at or behind the one before. False if no bone has another pose than it had before;
  /// the first call gives true.
  bool GoTo(int32_t frame);

  /// Whether the last GoTo changed the bone's rotation or position.
  bool RotationChanged(size_t bone) const { return (m_changes[bone] & RotationBit) != 0; }
  bool PositionChanged(size_t bone) const { return (m_changes[bone] & PositionBit) != 0; }
  bool Changed(size_t bone) const { return m_changes[bone] != 0; }

  std::span<const Vec3> Positions() const { return m_positions; }
  std::span<const Quat> Rotations() const { return m_rotations; }

 private:
  static constexpr uint8_t RotationBit = 1;
  static constexpr uint8_t PositionBit = 2;

  /// The runs of the three axes of one bone's rotation or position.
  struct RunTrack {
    int32_t Bone;
    bool IsRotation;
    bool IsDelta;
    int32_t HeldUntil;  // first frame at which a value can differ
    int32_t Values[3];
    RunCursor Cursors[3];
  };

  void Open(const std::optional<AnimData>& data, int32_t frame);
  void OpenBone(const AnimRecord& anim, int32_t frame);
  void AddTrack(const AnimRecord& anim, int64_t triple, bool isRotation, int32_t frame);
  void Advance(int32_t frame);
  /// Moves the track's cursors; whether a value differs.
  bool Read(RunTrack& track, int32_t frame);
  void Store(const RunTrack& track);
  void SetRotation(size_t bone, const Quat& rotation);
  void SetPosition(size_t bone, const Vec3& position);

  core::RecordArray<StudioBone> m_bones;
  const CheckedAnimation& m_animation;
  std::optional<AnimData> m_data;
  core::ImageView m_image;  // of m_data
  int32_t m_frame = -1;     // within m_data; -1 before the first pose
  int32_t m_heldUntil = 0;  // first frame at which any value can differ
  bool m_changed = false;
  std::vector<RunTrack> m_tracks;
  std::vector<Vec3> m_positions;
  std::vector<Quat> m_rotations;
  std::vector<uint8_t> m_changes;
};

}  // namespace tarnwick::decompiler
